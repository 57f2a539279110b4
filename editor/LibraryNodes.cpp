#include "editor/LibraryNodes.h"

#include "effect/CLooper.h"

using Korvanel::DirectoryTrees::Node;
using Korvanel::DirectoryTrees::Tree;

LibraryLock* LibraryLock::mOutermost = nullptr;

// A lock that may be none is beyond what the compiler checks.
KV_NO_LOCK_ANALYSIS LibraryLock::LibraryLock()
{
    if (mOutermost != nullptr)
        return;
    mOutermost = this;
    mLibrary = CLooper::patternTree();
    if (mLibrary != nullptr)
        mLibrary->lock().Enter();
}

KV_NO_LOCK_ANALYSIS LibraryLock::~LibraryLock()
{
    if (mOutermost != this)
        return;
    mOutermost = nullptr;
    if (mLibrary != nullptr)
        mLibrary->lock().Leave();
}

KV_NO_LOCK_ANALYSIS Tree* LibraryLock::root() const
{
    const auto& library = mOutermost->mLibrary;
    return library != nullptr ? library->root() : nullptr;
}

void keepWithParents(Node* node)
{
    for (; node != nullptr; node = node->parent())
        node->keep();
}

void releaseWithParents(Node* node)
{
    while (node != nullptr) {
        Node* parent = node->parent(); // held until its own turn
        node->release();
        node = parent;
    }
}

bool isListedBelow(const Tree* root, const Node* node)
{
    for (; node != root; node = node->parent()) {
        const Tree* parent = node->parent();
        if (parent == nullptr)
            return false;
        const Node* sibling = parent->firstLeaf();
        if (node->isTree())
            sibling = parent->firstTree();
        while (sibling != nullptr && sibling != node)
            sibling = sibling->next();
        if (sibling == nullptr)
            return false;
    }
    return true;
}

std::string toText(const Korvanel::String& text)
{
    return {text.c_str(), static_cast<std::size_t>(text.GetLength())};
}
