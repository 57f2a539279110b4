// The sorted lists of a tree.
#include "library/DirectoryTrees.h"

#include <algorithm>
#include <string_view>

namespace Korvanel::DirectoryTrees {

namespace {

bool isBefore(const Node* a, const Node* b)
{
    return a->name().Compare(b->name().c_str()) < 0;
}

bool isSameName(const Node* a, const Node* b)
{
    return a->name().Compare(b->name().c_str()) == 0;
}

/// A node to be sorted. Most pairs are told apart by the first bytes in which names differ at all,
/// and so without a look at the names, which lie all over the memory.
struct Keyed
{
    std::uint64_t key;
    Node* node;
};

/// Bytes that all names begin with.
std::size_t commonPrefix(const std::vector<Node*>& nodes)
{
    const std::string_view first = nodes.front()->name().c_str();
    std::size_t length = first.size();
    for (const Node* node : nodes) {
        const char* name = node->name().c_str();
        std::size_t same = 0;
        while (same < length && name[same] == first[same])
            ++same;
        length = same;
    }
    return length;
}

/// Eight bytes of a text as a number, zeros behind its end: they compare as the bytes do.
std::uint64_t keyOf(const char* text)
{
    std::uint64_t key = 0;
    for (int i = 0; i < 8; ++i) {
        key = key << 8 | static_cast<unsigned char>(*text);
        text += *text != 0 ? 1 : 0;
    }
    return key;
}

/// Equal names keep their order.
void sortByName(std::vector<Node*>& nodes)
{
    if (nodes.size() < 2)
        return;
    const std::size_t prefix = commonPrefix(nodes);
    std::vector<Keyed> keyed;
    keyed.reserve(nodes.size());
    for (Node* node : nodes)
        keyed.push_back({keyOf(node->name().c_str() + prefix), node});
    std::stable_sort(keyed.begin(), keyed.end(), [](const Keyed& a, const Keyed& b) {
        return a.key != b.key ? a.key < b.key : isBefore(a.node, b.node);
    });
    std::transform(keyed.begin(), keyed.end(), nodes.begin(),
                   [](const Keyed& item) { return item.node; });
}

} // namespace

Leaf* Tree::firstLeaf() const
{
    return static_cast<Leaf*>(mLeaves.first);
}

Leaf* Tree::lastLeaf() const
{
    return static_cast<Leaf*>(mLeaves.last);
}

Tree* Tree::firstTree() const
{
    return static_cast<Tree*>(mTrees.first);
}

Tree* Tree::lastTree() const
{
    return static_cast<Tree*>(mTrees.last);
}

bool Tree::AddLeaf(Leaf* leaf)
{
    return add(mLeaves, leaf);
}

bool Tree::AddTree(Tree* tree)
{
    return add(mTrees, tree);
}

bool Tree::add(List& list, Node* node)
{
    // From the first, and not from the end, though most come in order: after a Rename the list need
    // not be.
    Node* at = list.first;
    while (at != nullptr && isBefore(at, node))
        at = at->next();
    if (at != nullptr && isSameName(at, node))
        return false;
    insert(list, at, node);
    return true;
}

void Tree::AddLeaves(std::vector<Leaf*>& leaves)
{
    std::vector<Node*> nodes(leaves.begin(), leaves.end());
    leaves.clear();
    addAll(mLeaves, nodes);
}

void Tree::AddTrees(std::vector<Tree*>& trees)
{
    std::vector<Node*> nodes(trees.begin(), trees.end());
    trees.clear();
    addAll(mTrees, nodes);
}

void Tree::addAll(List& list, std::vector<Node*>& nodes)
{
    sortByName(nodes);
    Node* at = list.first;
    for (Node* node : nodes) {
        while (at != nullptr && isBefore(at, node))
            at = at->next();
        Node* before = at == nullptr ? list.last : at->prev();
        const bool taken = (at != nullptr && isSameName(at, node)) ||
                           (before != nullptr && isSameName(before, node));
        if (taken)
            node->release();
        else
            insert(list, at, node);
    }
}

void Tree::InsertLeaf(Leaf*& pos, Leaf* leaf)
{
    insert(mLeaves, pos, leaf);
    pos = leaf;
}

void Tree::InsertTree(Tree*& pos, Tree* tree)
{
    insert(mTrees, pos, tree);
    pos = tree;
}

void Tree::insert(List& list, Node* before, Node* node)
{
    Node* after = before == nullptr ? list.last : before->prev();
    node->SetPrev(after);
    node->SetNext(before);
    if (after == nullptr)
        list.first = node;
    if (before == nullptr)
        list.last = node;
    ++mListChanges;
    if (node->mParent == this)
        release(); // last: the node may have been the only one that held this tree
}

Leaf* Tree::RemoveLeaf(Leaf*& pos)
{
    Leaf* leaf = pos;
    pos = static_cast<Leaf*>(leaf->next());
    unlink(mLeaves, leaf);
    return leaf;
}

Tree* Tree::RemoveTree(Tree*& pos)
{
    Tree* tree = pos;
    pos = static_cast<Tree*>(tree->next());
    unlink(mTrees, tree);
    return tree;
}

void Tree::unlink(List& list, Node* node)
{
    Node* before = node->prev();
    Node* after = node->next();
    node->SetPrev(nullptr);
    node->SetNext(nullptr);
    if (before != nullptr)
        before->SetNext(after);
    if (list.first == node)
        list.first = after;
    if (list.last == node)
        list.last = before;
    ++mListChanges;
    if (node->mParent == this)
        keep();
}

void Tree::releaseAll(List& list)
{
    for (Node* node = list.first; node != nullptr;) {
        Node* next = node->next();
        // Who still holds the child may ask it for its path: there is no parent to ask any more.
        if (node->mParent == this)
            node->mParent = nullptr;
        node->mNext = nullptr;
        node->mPrev = nullptr;
        node->release();
        node = next;
    }
    list = {};
}

} // namespace Korvanel::DirectoryTrees
