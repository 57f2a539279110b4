#include "host/cli/FolderTree.h"

#include "host/cli/CommandError.h"

#include <filesystem>

std::string withoutTrailingSlash(std::string path)
{
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

FolderTree::FolderTree(const std::string& folder)
{
    if (folder.empty())
        throw CommandError(ExitCode::BadPattern, "there is no library; name its folder");
    std::error_code error;
    const std::filesystem::directory_iterator opened(folder, error); // says best what is wrong
    if (error)
        throw CommandError(ExitCode::BadPattern, folder + ": " + error.message());
    mRoot = new FolderNode(withoutTrailingSlash(folder).c_str(), nullptr);
    mRoot->MakeNode();
}

FolderTree::~FolderTree()
{
    mRoot->release();
}
