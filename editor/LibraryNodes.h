/// What it takes to show nodes of a library that changes and goes while they are shown. Thread:
/// user interface.
#pragma once
#include "library/DirectoryTrees.h"
#include "library/PatternTree.h"
#include "platform/toolkit/DataBrowser.h"

#include <memory>
#include <string>

/// Holds the library's lock for a scope, where there is a library. Without one the nodes that are
/// still shown belong to nobody else. May be nested: only the outermost asks for the library, as
/// the lock that this takes comes before the library's own.
class LibraryLock
{
public:
    LibraryLock();
    LibraryLock(const LibraryLock&) = delete;
    LibraryLock& operator=(const LibraryLock&) = delete;
    ~LibraryLock();

    /// Null without a library, and before it has one.
    Korvanel::DirectoryTrees::Tree* root() const;

private:
    static LibraryLock* mOutermost;

    std::shared_ptr<PatternTree> mLibrary; ///< the outermost one's only
};

/// Holds a node and all that it stands in: a node that the library has let go of may still be asked
/// for its path, which its parents tell. With the library's lock held.
void keepWithParents(Korvanel::DirectoryTrees::Node* node);
/// Gives that back. Nothing for null.
void releaseWithParents(Korvanel::DirectoryTrees::Node* node);

/// Whether the library still lists the node, below `root`. Its path alone does not tell: something
/// else may have that by now. With the library's lock held.
bool isListedBelow(const Korvanel::DirectoryTrees::Tree* root,
                   const Korvanel::DirectoryTrees::Node* node);

// A browser knows a node by its address.
inline toolkit::BrowserItem toItem(const Korvanel::DirectoryTrees::Node* node)
{
    return reinterpret_cast<toolkit::BrowserItem>(node);
}

inline Korvanel::DirectoryTrees::Node* toNode(toolkit::BrowserItem item)
{
    // NOLINTNEXTLINE(performance-no-int-to-ptr): numbers are what a browser has for its items
    return reinterpret_cast<Korvanel::DirectoryTrees::Node*>(item);
}

/// All bytes, NULs too.
std::string toText(const Korvanel::String& text);
