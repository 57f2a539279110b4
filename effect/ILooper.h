/// The extension interface "Korvanel::ILooper", by which a host chooses patterns.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string_view>

/// Records that the host and the effect exchange about patterns.
struct IKVSSExStrumwerks
{
    struct Pattern
    {
        std::int32_t numerator;   ///< beats per bar
        std::int32_t denominator; ///< the beat's note value, a power of two
        std::int32_t bars;
        /// Style, backslash, pattern. When setting: a path below the library without the extension,
        /// or `fileScheme` and an absolute path. Zero-terminated.
        char name[260];

        static constexpr std::string_view fileScheme = "file://"; ///< of a file outside the library
    };

    /// Told when another pattern plays. The host implements and owns it.
    class PatternObserver
    {
    public:
        virtual void patternChanged() = 0;

    protected:
        ~PatternObserver() = default;
    };
};

static_assert(sizeof(IKVSSExStrumwerks::Pattern) == 272 &&
              offsetof(IKVSSExStrumwerks::Pattern, denominator) == 4 &&
              offsetof(IKVSSExStrumwerks::Pattern, bars) == 8 &&
              offsetof(IKVSSExStrumwerks::Pattern, name) == 12);

namespace Korvanel {

/// Thread: [ui thread]. Part of the effect, which owns it.
class ILooper
{
public:
    /// @return false for null, for no pattern, or when the names do not fit; the record may then be
    /// partly filled
    virtual bool GetCurrentPattern(IKVSSExStrumwerks::Pattern* pattern) = 0;
    /// @return false, with nothing changed, for null or a file that cannot be read
    virtual bool SetCurrentPattern(IKVSSExStrumwerks::Pattern* pattern) = 0;
    /// An observer added twice is told twice. @return false for null
    virtual bool AddObserver(IKVSSExStrumwerks::PatternObserver* observer) = 0;
    /// Removes every occurrence; when this returns, no other thread is still telling it. @return
    /// true
    virtual bool RemoveObserver(IKVSSExStrumwerks::PatternObserver* observer) = 0;
    virtual void VelocityShift(int shift) = 0; ///< -127..127, clamped
    virtual void SilentPlay(bool silent) = 0; ///< the pattern goes on, but nothing reaches the host

protected:
    ~ILooper() = default;
};

} // namespace Korvanel
