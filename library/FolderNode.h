/// A folder on the disk as a tree of patterns: ".mid" files are its leaves, folders its sub-trees,
/// a ".txt" file its description. Names that begin with "." or hold a backslash are nobody's.
#pragma once
#include "library/DirectoryTrees.h"
#include "platform/os/FolderListing.h"

class FolderNode : public Korvanel::DirectoryTrees::Tree
{
public:
    /// Empty until MakeNode. A root's name is its whole path.
    FolderNode(const Korvanel::String& name, Korvanel::DirectoryTrees::Tree* parent);

    Korvanel::String GetDescriptionNoPath() override { return mDescription; }

    void SetDescription(const Korvanel::String& description) override
    {
        mDescription = description;
    }

    /// Brings the tree into step with the disk. What is still there keeps its node, whoever holds
    /// it; only what is new is made and only what is gone is released. A folder that cannot be read
    /// counts as empty. Folders whose time stamps prove them unchanged are not read again.
    void MakeNode() override;

    /// Reads the folder. @return an unattached node with what is there now, whose children have
    /// this node as their parent; the caller releases it
    FolderNode* MakeNewNode();

    // Merge a fresh reading into this node; what is kept of it leaves `fresh`.
    void RefreshLeaves(Tree* fresh);
    void RefreshBranches(Tree* fresh);

    /// Writes the folder as a volume file, with the leaves as Leaf::WriteTo has them. The file is
    /// there when it is whole, or the old one stays (platform::replaceWholeFile); nothing is
    /// reported.
    void WriteVolumeTo(const char* path);

protected:
    ~FolderNode() override = default;

private:
    bool isUnchanged();
    void rescan();

    Korvanel::String mDescription; ///< the description file's name, or ""
    platform::FolderStamp mStamp;
    bool mStampIsSure = false;
    std::uint32_t mChangesAtScan = 0; ///< listChanges() when the stamp was taken
};
