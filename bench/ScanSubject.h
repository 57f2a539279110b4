/// One way to find all patterns of a library folder: ours, the floor's or a peer's.
#pragma once
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace bench {

class ScanSubject
{
public:
    virtual ~ScanSubject() = default;
    virtual const char* name() const = 0;
    /// Finds everything anew in place of what was found last, whose disposal is part of the cost.
    virtual void scan(const std::string& folder) = 0;
    /// Whole paths of the patterns that the last scan found, ascending byte by byte; for the check.
    virtual std::vector<std::string> paths() const = 0;

    // For those who can bring the result of a scan into step with a change --------------------

    virtual bool rescans() const { return false; }

    virtual void rescan() {} ///< of the folder scanned last
};

std::unique_ptr<ScanSubject> makeOurScan();
std::unique_ptr<ScanSubject> makeFloorScan();
std::unique_ptr<ScanSubject> makeFilesystemScan();
std::unique_ptr<ScanSubject> makeNftwScan();

/// Registers scans and rescans by each subject, and the time from a change to its notice. The
/// libraries are made here, and removed when the program ends.
/// @return what is wrong with a subject's result, or nothing
std::string addLibraryBenchmarks();

} // namespace bench
