/// The pattern library that all effects of the process share, in step with the disk.
#pragma once
#include "library/ChangeObserver.h"
#include "library/DirectoryTrees.h"
#include "shared/System/kvContracts.h"
#include "shared/System/kvCriticalSection.h"

#include <cstdint>

namespace Korvanel {
class CMidiTrack;
}

/// Thread: any but the processing one. Every operation takes the tree's lock. Nodes change under
/// that lock only: who walks over them, or asks one for its path, does so between `lock()`s own
/// Enter and Leave; who keeps one longer holds a reference.
class PatternTree final : public ChangeObserver
{
public:
    using NotifyProc = void (*)();

    PatternTree();
    /// Waits for a notification that is under way; so not from inside one, and not with a lock held
    /// that the notify procedure takes.
    ~PatternTree() override;

    /// Makes the folder the library and scans it; the same path again does nothing. The notify
    /// procedure is not called.
    void SetRoot(const char* path) KV_EXCLUDES(mLock);
    Korvanel::String GetRoot() const KV_EXCLUDES(mLock); ///< the path as given; "" before
    const char* GetObservedFolder() const override;      ///< null before SetRoot
    /// At the first pattern of a style; of a style that is not there, of its deepest folder that
    /// is.
    Korvanel::DirectoryTrees::LeafIterator FindNode(const Korvanel::String& style)
        KV_EXCLUDES(mLock);
    /// Of a pattern, or else of the folder that FindTree gives; false before SetRoot.
    bool IsReadOnlyNode(const char* path) const KV_EXCLUDES(mLock);
    /// Writes the root's path as a text; an empty one before SetRoot.
    void SaveRoot(Korvanel::OutputStream& stream) const KV_EXCLUDES(mLock);
    /// Writes a style as a volume file; see FolderNode::WriteVolumeTo.
    void CompileToVolume(const char* style, const char* volume) KV_EXCLUDES(mLock);
    /// Loads a pattern by its style's path and its name, with no chance for the tree to change in
    /// between. @return false when there is no such pattern or it cannot be read
    bool LoadPattern(const char* style, const char* pattern, Korvanel::CMidiTrack& track)
        KV_EXCLUDES(mLock);

    void update() KV_EXCLUDES(mLock);          ///< rescans
    void updateAndNotify() KV_EXCLUDES(mLock); ///< rescans and tells
    void OnChangeFolderContents() override;
    /// Told, with no lock held, after each rescan that a change or updateAndNotify caused. Taking
    /// it away, with null, ends watching until the next rescan.
    void setNotifyProc(NotifyProc proc) KV_EXCLUDES(mLock);
    void listenerDestroyed() KV_EXCLUDES(mLock); ///< ends watching for good

    Korvanel::DirectoryTrees::Tree* root() const KV_REQUIRES(mLock) { return mRoot; }

    Korvanel::CriticalSection& lock() const KV_RETURN_CAPABILITY(mLock) { return mLock; }

private:
    Korvanel::DirectoryTrees::LeafIterator startOf(const Korvanel::String& style) const
        KV_REQUIRES(mLock);
    void rescan() KV_REQUIRES(mLock);
    void notify() KV_EXCLUDES(mLock);

    mutable Korvanel::CriticalSection mLock;
    Korvanel::DirectoryTrees::Tree* mRoot KV_GUARDED_BY(mLock) = nullptr;
    std::uint32_t mObserving KV_GUARDED_BY(mLock) = 0x100000; ///< 0: never again
    NotifyProc mNotify KV_GUARDED_BY(mLock) = nullptr;
};
