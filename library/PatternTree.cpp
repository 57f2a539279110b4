#include "library/PatternTree.h"

#include "library/FolderNode.h"
#include "library/Pattern.h"

using Korvanel::ScopedLock;
using Korvanel::String;
using Korvanel::DirectoryTrees::Leaf;
using Korvanel::DirectoryTrees::LeafIterator;
using Korvanel::DirectoryTrees::Tree;

PatternTree::PatternTree() = default;

PatternTree::~PatternTree()
{
    endWatch(); // first: a call under way uses all of the rest
    const ScopedLock hold(mLock);
    Tree::release(mRoot);
}

void PatternTree::SetRoot(const char* path)
{
    const ScopedLock hold(mLock);
    if (mRoot != nullptr && mRoot->name().Compare(path) == 0)
        return;
    StopWatch();
    Tree::release(mRoot);
    mRoot = new FolderNode(path, nullptr);
    rescan();
}

/// Watching begins anew with every rescan, so that a folder "User" that has appeared since is
/// watched from now on; and before it, so that what changes during it is told afterwards.
void PatternTree::rescan()
{
    StopWatch();
    if (mObserving != 0)
        StartWatch();
    if (mRoot != nullptr)
        mRoot->MakeNode();
}

String PatternTree::GetRoot() const
{
    const ScopedLock hold(mLock);
    return mRoot == nullptr ? String() : mRoot->name();
}

const char* PatternTree::GetObservedFolder() const
{
    const ScopedLock hold(mLock);
    return mRoot == nullptr ? nullptr : mRoot->name().c_str();
}

LeafIterator PatternTree::FindNode(const String& style)
{
    const ScopedLock hold(mLock);
    return startOf(style);
}

LeafIterator PatternTree::startOf(const String& style) const
{
    return LeafIterator(mRoot == nullptr ? nullptr : mRoot->FindTree(style, 0));
}

bool PatternTree::IsReadOnlyNode(const char* path) const
{
    const ScopedLock hold(mLock);
    if (mRoot == nullptr)
        return false;
    const Leaf* leaf = mRoot->FindLeaf(path, 0);
    return leaf != nullptr ? leaf->isReadOnly() : mRoot->FindTree(path, 0)->isReadOnly();
}

void PatternTree::SaveRoot(Korvanel::OutputStream& stream) const
{
    const ScopedLock hold(mLock);
    if (mRoot == nullptr) {
        stream.WriteUInt32(0);
        return;
    }
    const auto length = static_cast<std::uint32_t>(mRoot->name().GetLength());
    stream.Write(length);
    stream.Write(static_cast<const void*>(mRoot->name().c_str()), length);
}

void PatternTree::CompileToVolume(const char* style, const char* volume)
{
    const ScopedLock hold(mLock);
    if (mRoot != nullptr) // every tree of a folder library is a folder
        static_cast<FolderNode*>(mRoot->FindTree(style, 0))->WriteVolumeTo(volume);
}

bool PatternTree::LoadPattern(const char* style, const char* pattern, Korvanel::CMidiTrack& track)
{
    const ScopedLock hold(mLock);
    Korvanel::PatternIterator at(startOf(style));
    return at.find(pattern) && (*at).LoadTo(&track);
}

// Changes -----------------------------------------------------------------------------------------

void PatternTree::update()
{
    const ScopedLock hold(mLock);
    rescan();
}

void PatternTree::updateAndNotify()
{
    update();
    notify();
}

void PatternTree::OnChangeFolderContents()
{
    {
        const ScopedLock hold(mLock);
        if (mRoot != nullptr)
            mRoot->MakeNode();
    }
    notify();
}

void PatternTree::notify()
{
    NotifyProc proc = nullptr;
    {
        const ScopedLock hold(mLock);
        proc = mNotify;
    }
    if (proc != nullptr)
        proc();
}

void PatternTree::setNotifyProc(NotifyProc proc)
{
    const ScopedLock hold(mLock);
    StopWatch();
    mNotify = proc;
    if (mNotify != nullptr && mObserving != 0)
        StartWatch();
}

void PatternTree::listenerDestroyed()
{
    const ScopedLock hold(mLock);
    StopWatch();
    mObserving = 0;
}
