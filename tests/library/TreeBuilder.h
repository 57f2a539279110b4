/// Trees and lists of names for the tests of the library.
#pragma once
#include "library/DirectoryTrees.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using Korvanel::DirectoryTrees::Leaf;
using Korvanel::DirectoryTrees::Node;
using Korvanel::DirectoryTrees::Tree;

inline Leaf* addLeaf(Tree& tree, const char* name)
{
    auto* leaf = new Leaf(name, &tree);
    EXPECT_TRUE(tree.AddLeaf(leaf));
    return leaf;
}

inline Tree* addTree(Tree& tree, const char* name)
{
    auto* added = new Tree(name, &tree);
    EXPECT_TRUE(tree.AddTree(added));
    return added;
}

using Names = std::vector<std::string>;

inline Names namesFrom(const Node* node)
{
    Names names;
    for (; node != nullptr; node = node->next())
        names.emplace_back(node->name().c_str());
    return names;
}

inline Names namesBack(const Node* node)
{
    Names names;
    for (; node != nullptr; node = node->prev())
        names.insert(names.begin(), node->name().c_str());
    return names;
}

inline Names leavesOf(const Tree& tree)
{
    return namesFrom(tree.firstLeaf());
}

inline Names treesOf(const Tree& tree)
{
    return namesFrom(tree.firstTree());
}

/// Holds a root's first reference for a test.
template <typename T>
class Owned
{
public:
    explicit Owned(T* node)
        : mNode(node)
    {
    }

    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;

    ~Owned() { mNode->release(); }

    T* operator->() const { return mNode; }

    T& operator*() const { return *mNode; }

    T* get() const { return mNode; }

private:
    T* mNode;
};
