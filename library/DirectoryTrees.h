/// Named trees that mirror folders: a Tree is a folder, a Leaf a file. The pattern library is one,
/// the volume file another; the browser and the effect look patterns up here.
///
/// Paths inside a tree are relative and separated by backslashes ("Rock\Intro 1.mid"); paths on the
/// disk have slashes. Names compare byte by byte. A tree belongs to whoever locks it: nothing here
/// locks; only the counting of references is safe from any thread.
#pragma once
#include "shared/System/kvObject.h"
#include "shared/System/kvStream.h"
#include "shared/System/kvString.h"

#include <atomic>
#include <cstdint>
#include <vector>

namespace Korvanel::DirectoryTrees {

class Leaf;
class Tree;

/// What a leaf's data are read from. Whoever receives one releases it with releaseRef.
class InStream : public InputStream, public RefCounted
{
protected:
    ~InStream() = default;
};

/// Counted by hand: whoever makes a node holds its first reference, and AddLeaf or AddTree takes it
/// over. A tree holds one reference to each of its children; a node that its parent does not list,
/// not yet or no more, holds one to its parent, which it may be asked for.
class Node
{
protected:
    virtual ~Node(); // the first slot

public:
    enum Flag : std::uint32_t {
        IsTreeFlag = 1,
        ReadOnlyFlag = 2, ///< read from a volume: there is no file of its own behind it
    };

    Node(const String& name, Tree* parent); ///< outside of the parent's lists
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;

    virtual void WriteTo(OutputStream&) {}

    /// Renames the file or folder. When that fails the node keeps its name, and nothing is said.
    /// The node also keeps its place among its siblings, even where the order is then wrong: what
    /// is shown of it must not jump while it is being named. A rescan puts it in order.
    virtual void Rename(const String& newName);
    /// Deletes the file, or the folder when it is empty. The node stays where it is.
    virtual void Remove();
    /// The whole path of the description file of a folder; "" when there is none.
    virtual String GetDescription();

    virtual String GetDescriptionNoPath() { return {}; } ///< that file's name

    virtual void SetDescription(const String&) {}

    /// The path on the disk: the parent's full path and the name.
    String FullName() const;
    /// The path below `base`, with backslashes and never with the root's own name; "" for `base`
    /// itself. Null means the root.
    String PathName(Tree* base) const;

    void keep() { ++mReferences; }

    /// Gives one reference back; the last one destroys the node.
    void release();

    /// The same, for a node that may be null.
    static void release(Node* node);

    bool isTree() const { return (mFlags & IsTreeFlag) != 0; }

    bool isReadOnly() const { return (mFlags & ReadOnlyFlag) != 0; }

    Tree* parent() const { return mParent; } ///< null for a root, and once its tree is gone

    const String& name() const { return mName; }

    Node* next() const { return mNext; } ///< the following sibling of the same kind

    Node* prev() const { return mPrev; }

    /// Makes two siblings neighbours; each lets go of its old neighbour on that side first.
    void SetPrev(Node* node);
    void SetNext(Node* node);

protected:
    void setFlag(Flag flag) { mFlags |= flag; }

private:
    friend class Tree;

    std::uint32_t mFlags = 0;
    Tree* mParent;
    String mName;
    Node* mNext = nullptr;
    Node* mPrev = nullptr;
    std::atomic<std::int32_t> mReferences{1};
};

/// A folder: leaves and sub-trees in two lists, each in ascending order and without equal names.
class Tree : public Node
{
public:
    Tree(const String& name, Tree* parent);

    /// The leaves, then the sub-trees: each list is its records (length of the name, name, content)
    /// and a length of 0. Numbers are 32-bit. The tree's own name is not written.
    void WriteTo(OutputStream& stream) override;
    /// Deletes the leaves' files, the sub-trees and the folder; whatever else is in the folder
    /// keeps it. No node leaves its list.
    void Remove() override;

    /// As PathName, with a trailing backslash; "" for `base` and for a root.
    virtual String Path(Tree* base);
    virtual int FullPathSize(); ///< bytes of the full path, its trailing slash included
    /// Writes FullPathSize() bytes and a NUL.
    virtual void AppendFullPath(char* dst);
    /// Fills the tree from where it comes from; a plain one passes that on to its sub-trees.
    virtual void MakeNode();

    void FullPath(String& out);

    // Lists. A node is inserted with the caller's reference. ------------------------------------
    /// In its place. A name that is there already is refused: the node stays the caller's.
    /// @return false when it was refused
    bool AddLeaf(Leaf* leaf);
    bool AddTree(Tree* tree);
    /// Any number at once, in any order, at the cost of sorting them. Of equal names the first one
    /// given stays, and the others are released. Empties the vector.
    void AddLeaves(std::vector<Leaf*>& leaves);
    void AddTrees(std::vector<Tree*>& trees);
    /// Before `pos`, or at the end when that is null; `pos` is then the node inserted.
    void InsertLeaf(Leaf*& pos, Leaf* leaf);
    void InsertTree(Tree*& pos, Tree* tree);
    /// Takes out what `pos` names, and moves `pos` on to its next sibling. The node keeps its
    /// parent.
    /// @return the node, with its reference, which is now the caller's
    Leaf* RemoveLeaf(Leaf*& pos);
    Tree* RemoveTree(Tree*& pos);

    Leaf* firstLeaf() const;
    Leaf* lastLeaf() const;
    Tree* firstTree() const;
    Tree* lastTree() const;

    int NumLeaves() const; ///< here and below

    // Search. `start` is an index into the path. ------------------------------------------------
    /// Never null: for a path that does not exist the deepest existing folder on it, which is what
    /// the browser shows when a style has gone.
    Tree* FindTree(const String& path, int start);
    /// Null when there is none. Below a folder that does not exist the deepest existing one is
    /// searched, as FindTree finds it.
    Leaf* FindLeaf(const String& path, int start);

protected:
    ~Tree() override;

    /// Moves with every change of the lists and of the children's names.
    std::uint32_t listChanges() const { return mListChanges; }

private:
    friend class Node;

    struct List
    {
        Node* first = nullptr;
        Node* last = nullptr;
    };

    bool add(List& list, Node* node);
    void addAll(List& list, std::vector<Node*>& nodes);
    void insert(List& list, Node* before, Node* node);
    void unlink(List& list, Node* node);
    void releaseAll(List& list);
    static Node* named(const List& list, const char* name, int length);
    Tree* follow(const String& path, int start, int end);
    static void writeList(OutputStream& stream, const List& list);

    List mLeaves;
    List mTrees;
    std::uint32_t mListChanges = 0;
};

/// A file.
class Leaf : public Node
{
public:
    Leaf(const String& name, Tree* parent);

    /// The file found under the relative name, as the block-counting file layer reports it: a
    /// length of 0, and of a file of at least 1024 bytes the first one. Whole data are written by
    /// the leaves of a volume; existing readers of either count on the difference.
    void WriteTo(OutputStream& stream) override;
    /// The file's bytes. Never null: of a file that cannot be opened nothing is read.
    virtual InStream* GetInput();

protected:
    ~Leaf() override = default;
};

/// Reads a file's bytes.
class FileInStream final : public Object, public InStream
{
public:
    /// @param mode  as File::Mode
    FileInStream(const char* path, unsigned mode);

    using InputStream::Read;
    bool IsEOF() override;
    /// @return the bytes read
    std::uint32_t Read(void* data, std::uint32_t size) override;

    std::int32_t keepRef() override { return Object::keepRef(); }

    std::int32_t releaseRef() override { return Object::releaseRef(); }

private:
    ~FileInStream() override = default;

    File mFile;
};

} // namespace Korvanel::DirectoryTrees

#include "library/LeafIterator.h"
