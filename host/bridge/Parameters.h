/// The effect's parameters as a host sees them: one table for all formats.
#pragma once
#include "effect/CLooper.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>

enum class ParameterKind { Number, Toggle, Choice };

struct Parameter
{
    const char* id;   ///< letters, digits and underscores; never changes: projects hold it
    const char* name; ///< as shown
    ParameterKind kind;
    int min;
    int max;
    int normal;                         ///< of a new effect
    const char* unit;                   ///< "" for none
    std::array<const char*, 3> choices; ///< of a Choice, from min on
    int (*get)(const CLooper& effect);
    void (*set)(CLooper& effect, int value);
};

/// Keeps the host's values and the effect's in step. What the host says counts when it changes, so
/// that a host that repeats its values in every block does not undo what the editor or a project
/// has set in between.
class Parameters
{
public:
    static constexpr std::size_t kCount = 10;

    /// The effect is new, and outlives this.
    explicit Parameters(CLooper& effect);

    static std::span<const Parameter, kCount> table();

    /// Rounded and clamped; what is no number is ignored. [audio thread] or the host's own; takes
    /// the effect's lock when the tempo type changes.
    void fromHost(std::size_t index, float value);

    int value(std::size_t index) const; ///< the effect's, within the range. Thread: any

    /// Tells of each parameter that is not what the host knows, and takes it as known then.
    /// [ui thread]; one caller at a time.
    template <typename Tell>
    void reportChanges(Tell tell)
    {
        for (std::size_t index = 0; index < kCount; ++index) {
            // In this order: what the host sets meanwhile is then reported twice, never undone.
            const int known = mKnown[index].load(std::memory_order_acquire);
            const int now = value(index);
            if (now == known)
                continue;
            mKnown[index].store(now, std::memory_order_release);
            tell(index, now);
        }
    }

private:
    CLooper& mEffect;
    std::array<std::atomic<int>, kCount> mKnown{}; ///< to the host
};
