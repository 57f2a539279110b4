/// A scanned library folder, held while a command needs it.
#pragma once
#include "library/FolderNode.h"

#include <string>

/// "/" alone keeps its own.
std::string withoutTrailingSlash(std::string path);

class FolderTree
{
public:
    /// Throws CommandError (BadPattern) for what is no folder or cannot be read.
    explicit FolderTree(const std::string& folder);
    FolderTree(const FolderTree&) = delete;
    FolderTree& operator=(const FolderTree&) = delete;
    ~FolderTree();

    FolderNode& root() const { return *mRoot; }

private:
    FolderNode* mRoot;
};
