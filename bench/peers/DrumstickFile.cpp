// drumstick-file hands over each message as a Qt signal and keeps no song: what is read is kept
// here in a plain list, without pairing, and written from it.
#include "bench/FileSubject.h"

#include <QBuffer>
#include <QByteArray>
#include <QDataStream>
#include <drumstick/qsmf.h>
#include <optional>

namespace bench {

namespace {

using drumstick::File::QSmf;

struct Message
{
    long tick;
    int kind;
    int channel;
    int data1;
    int data2;
};

class DrumstickFile final : public FileSubject
{
public:
    const char* name() const override { return "drumstick"; }

    void read(std::span<const std::uint8_t> file) override
    {
        QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(file.data()),
                                                   static_cast<int>(file.size()));
        QDataStream stream(bytes);
        mMessages.clear();
        listenTo(mSmf.emplace()); // a used one grows slower with each file
        mSmf->readFromStream(&stream);
    }

    void write() override
    {
        mOut = QByteArray();
        QBuffer buffer(&mOut);
        buffer.open(QIODevice::WriteOnly);
        QDataStream stream(&buffer);
        mSmf->setDivision(kPatternPpq);
        mSmf->setFileFormat(0);
        mSmf->setTracks(1);
        mSmf->writeToStream(&stream);
    }

    std::span<const std::uint8_t> written() override
    {
        return {reinterpret_cast<const std::uint8_t*>(mOut.constData()),
                static_cast<std::size_t>(mOut.size())};
    }

    std::size_t notes() const override
    {
        std::size_t count = 0;
        for (const Message& message : mMessages)
            count += message.kind == 0x90 && message.data2 != 0 ? 1 : 0;
        return count;
    }

private:
    void listenTo(QSmf& smf)
    {
        listen(smf, &QSmf::signalSMFNoteOn, 0x90);
        listen(smf, &QSmf::signalSMFNoteOff, 0x80);
        listen(smf, &QSmf::signalSMFKeyPress, 0xA0);
        listen(smf, &QSmf::signalSMFCtlChange, 0xB0);
        QObject::connect(&smf, &QSmf::signalSMFPitchBend, &smf, [this](int channel, int value) {
            const int wheel = value + 8192;
            keep(0xE0, channel, wheel & 0x7F, wheel >> 7);
        });
        QObject::connect(&smf, &QSmf::signalSMFWriteTrack, &smf, [this](int) { putTrack(); });
    }

    template <typename Signal>
    void listen(QSmf& smf, Signal signal, int kind)
    {
        QObject::connect(&smf, signal, &smf, [this, kind](int channel, int data1, int data2) {
            keep(kind, channel, data1, data2);
        });
    }

    void keep(int kind, int channel, int data1, int data2)
    {
        mMessages.push_back({mSmf->getCurrentTime(), kind, channel, data1, data2});
    }

    void putTrack()
    {
        long last = 0;
        mSmf->writeTimeSignature(0, 4, 2, 24, 8);
        mSmf->writeTempo(0, 500000);
        for (const Message& message : mMessages) {
            mSmf->writeMidiEvent(message.tick - last, message.kind, message.channel, message.data1,
                                 message.data2);
            last = message.tick;
        }
        mSmf->writeMetaEvent(0, drumstick::File::end_of_track);
    }

    std::optional<QSmf> mSmf;
    std::vector<Message> mMessages;
    QByteArray mOut;
};

} // namespace

std::unique_ptr<FileSubject> makeDrumstick()
{
    return std::make_unique<DrumstickFile>();
}

} // namespace bench
