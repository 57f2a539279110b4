#include "host/bridge/Programs.h"

#include "library/PatternTree.h"

#include <memory>

using Korvanel::ScopedLock;
using Korvanel::String;
using Korvanel::DirectoryTrees::LeafIterator;
using Korvanel::DirectoryTrees::Node;
using Korvanel::DirectoryTrees::Tree;

std::optional<Program> findProgram(const CLooper& effect, int program)
{
    const std::shared_ptr<PatternTree> library = CLooper::patternTree();
    if (library == nullptr || program < 0)
        return std::nullopt;
    const String style = effect.GetStyleName();
    const ScopedLock hold(library->lock());
    Tree* root = library->root();
    const Node* first =
        root == nullptr ? nullptr : LeafIterator::findFirst(root->FindTree(style, 0));
    const Node* node = first;
    for (; program > 0 && node != nullptr; --program)
        node = node->next();
    if (node == nullptr)
        return std::nullopt;
    return Program{first->parent()->PathName(root), node->name()};
}

std::optional<int> currentProgram(const CLooper& effect)
{
    const String pattern = effect.GetPatternName();
    const std::shared_ptr<PatternTree> library = CLooper::patternTree();
    if (library == nullptr || pattern == "")
        return std::nullopt;
    const String style = effect.GetStyleName();
    const ScopedLock hold(library->lock());
    Tree* root = library->root();
    int program = 0;
    for (const Node* node = root == nullptr ? nullptr
                                            : LeafIterator::findFirst(root->FindTree(style, 0));
         node != nullptr; node = node->next(), ++program)
        if (node->name() == pattern)
            return program;
    return std::nullopt;
}

void selectProgram(CLooper& effect, int program)
{
    if (const std::optional<Program> found = findProgram(effect, program))
        effect.ChangePattern(found->style.c_str(), found->pattern.c_str());
}
