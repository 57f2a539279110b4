// The pattern library that the effects of the process share, and the list of those effects.
#include "effect/CLooper.h"
#include "library/PatternTree.h"

#include <algorithm>
#include <utility>

using Korvanel::CMidiTrack;
using Korvanel::CriticalSection;
using Korvanel::ScopedLock;

// The tree goes first where a host exits with effects alive: it waits for on_tree_change, which
// uses the others.
CriticalSection CLooper::mLoopersLock;
std::vector<CLooper*> CLooper::mLoopers;
CriticalSection CLooper::mPatternsLock;
std::shared_ptr<PatternTree> CLooper::mPatternTree;

void CLooper::joinLoopers()
{
    const ScopedLock hold(mLoopersLock);
    mLoopers.push_back(this);
}

void CLooper::leaveLoopers()
{
    const ScopedLock hold(mLoopersLock);
    std::erase(mLoopers, this);
}

void CLooper::openLibrary()
{
    const Korvanel::String folder = GetPatternsDir();
    const ScopedLock hold(mPatternsLock);
    if (mPatternTree != nullptr)
        return;
    mPatternTree = std::make_shared<PatternTree>();
    mPatternTree->SetRoot(folder.c_str());
    mPatternTree->setNotifyProc(&CLooper::on_tree_change);
}

void CLooper::closeLibrary()
{
    std::shared_ptr<PatternTree> unused;
    const ScopedLock loopers(mLoopersLock);
    if (!mLoopers.empty())
        return;
    const ScopedLock patterns(mPatternsLock);
    unused = std::move(mPatternTree);
    mPatternTree = nullptr;
} // the tree goes last, both locks open: it waits for on_tree_change, which takes one of them

std::shared_ptr<PatternTree> CLooper::patternTree()
{
    const ScopedLock hold(mPatternsLock);
    return mPatternTree;
}

void CLooper::ChangePattern(const char* style, const char* pattern)
{
    const std::shared_ptr<PatternTree> library = patternTree();
    CMidiTrack track;
    if (library == nullptr || !library->LoadPattern(style, pattern, track))
        return;
    set_track(track);
    SetStyleName(style);
    SetPatternName(pattern);
    broadcast_to_listeners(&Listener::loaded);
}

void CLooper::on_tree_change()
{
    const ScopedLock hold(mLoopersLock);
    const std::vector<CLooper*> told = mLoopers; // a listener may make effects come and go
    for (CLooper* looper : told)
        if (std::find(mLoopers.begin(), mLoopers.end(), looper) != mLoopers.end())
            looper->PatternTreeIsUpdated();
}

void CLooper::PatternTreeIsUpdated()
{
    broadcast_to_listeners(&Listener::patternsChanged);
}
