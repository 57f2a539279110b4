/// The volume: a folder of patterns in one file (docs/formats/volume.md).
#pragma once
#include "library/DirectoryTrees.h"

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

/// A pattern whose data are in memory.
class InFileTerminalNode : public Korvanel::DirectoryTrees::Leaf
{
public:
    /// Reads the node's data, each stream at a position of its own. It lives as long as the node
    /// does: holding and releasing it has no effect.
    class Stream final : public Korvanel::DirectoryTrees::InStream
    {
    public:
        explicit Stream(const InFileTerminalNode& node)
            : mNode(node)
        {
        }

        using InputStream::Read;
        bool IsEOF() override;
        std::uint32_t Read(void* data, std::uint32_t size) override;

        std::int32_t keepRef() override { return 0; }

        std::int32_t releaseRef() override { return 0; }

    private:
        const InFileTerminalNode& mNode;
        std::uint32_t mPosition = 0;
    };

    InFileTerminalNode(const Korvanel::String& name, Korvanel::DirectoryTrees::Tree* parent);

    void WriteTo(Korvanel::OutputStream& stream) override;
    Korvanel::DirectoryTrees::InStream* GetInput() override; ///< the node's; see Stream
    /// Takes a data record: its length and its bytes. Of a record that is cut short the node holds
    /// what came.
    virtual void ReadFrom(Korvanel::InputStream& stream);

    void setData(std::vector<std::uint8_t> data) { mData = std::move(data); } ///< below 4 GB

    const std::vector<std::uint8_t>& data() const { return mData; }

protected:
    ~InFileTerminalNode() override;

private:
    std::vector<std::uint8_t> mData;
    std::vector<std::unique_ptr<Stream>> mStreams; ///< handed out
};

/// A folder inside a volume.
class FileBaseNode : public Korvanel::DirectoryTrees::Tree
{
public:
    FileBaseNode(const Korvanel::String& name, Korvanel::DirectoryTrees::Tree* parent);

    /// Adds what a volume's body holds. A body that is damaged or cut short gives what stands
    /// before the damage.
    virtual void ReadFrom(Korvanel::InputStream& stream);

protected:
    ~FileBaseNode() override = default;
};

/// A volume file; its name is the file's path.
class VolumeNode : public FileBaseNode
{
public:
    VolumeNode(const Korvanel::String& name, Korvanel::DirectoryTrees::Tree* parent);

    // A volume's full path is that of its file: no slash follows.
    int FullPathSize() override;
    void AppendFullPath(char* dst) override;
    /// Reads the file in place of what is held; a file that is no volume leaves the node empty.
    void MakeNode() override;

    bool isVolume() const { return mIsVolume; } ///< what MakeNode found

protected:
    ~VolumeNode() override = default;

private:
    void clear();

    bool mIsVolume = false;
};

/// Writes the volume's header and the tree as its body.
void writeVolume(Korvanel::DirectoryTrees::Tree& tree, Korvanel::OutputStream& stream);
