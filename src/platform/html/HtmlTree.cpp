// SPDX-License-Identifier: Apache-2.0
#include "platform/html/HtmlTree.h"

#include "platform/ProcessorTime.h"
#include "platform/html/GumboChildren.h"

#include <csetjmp>
#include <cstdlib>
#include <gumbo.h>
#include <vector>

namespace
{
constexpr size_t Alignment = alignof(std::max_align_t);
/// Each block is twice the one before, up to the largest.
constexpr size_t FirstBlockSize = size_t{32} * 1024;
constexpr size_t LargestBlockSize = size_t{1024} * 1024;
constexpr size_t MemoryLimit = size_t{768} * 1024 * 1024;
constexpr qsizetype Megabyte = qsizetype{1024} * 1024;
constexpr std::chrono::milliseconds BaseTime(1000);
/// An ordinary page takes about a third of this.
constexpr std::chrono::milliseconds TimePerMegabyte(250);
constexpr std::chrono::milliseconds LittleTime(100);
constexpr int CallsBetweenClocks = 64;

std::chrono::milliseconds UsualTime(qsizetype size)
{
    return BaseTime + TimePerMegabyte * (size / Megabyte);
}

GumboNamespaceEnum GumboNamespace(HtmlNamespace space)
{
    switch (space) {
    case HtmlNamespace::Svg:
        return GUMBO_NAMESPACE_SVG;
    case HtmlNamespace::MathML:
        return GUMBO_NAMESPACE_MATHML;
    default:
        return GUMBO_NAMESPACE_HTML;
    }
}

/// Elements that the algorithm ends by itself before it puts another of their kind into them, so that their own depth
/// is bounded by that of the others.
bool EndsByItself(GumboTag tag)
{
    switch (tag) {
    case GUMBO_TAG_HTML:
    case GUMBO_TAG_HEAD:
    case GUMBO_TAG_BODY:
    case GUMBO_TAG_P:
    case GUMBO_TAG_LI:
    case GUMBO_TAG_DD:
    case GUMBO_TAG_DT:
    case GUMBO_TAG_CAPTION:
    case GUMBO_TAG_TBODY:
    case GUMBO_TAG_THEAD:
    case GUMBO_TAG_TFOOT:
    case GUMBO_TAG_TR:
    case GUMBO_TAG_TD:
    case GUMBO_TAG_TH:
        return true;
    default:
        return false;
    }
}

bool IsDeeperThan(const GumboNode* root, int limit)
{
    struct Place
    {
        const GumboVector* Children;
        unsigned Next;
        int Weight;
    };
    std::vector<Place> places{{ChildrenOf(root), 0, 0}};
    int depth = 0;
    while (!places.empty()) {
        Place& top = places.back();
        if (top.Next == top.Children->length) {
            depth -= top.Weight;
            places.pop_back();
            continue;
        }
        const auto* child = static_cast<const GumboNode*>(top.Children->data[top.Next++]);
        const GumboVector* children = ChildrenOf(child);
        if (children == nullptr)
            continue;
        const int weight = EndsByItself(child->v.element.tag) ? 0 : 1;
        depth += weight;
        if (depth > limit)
            return true;
        places.push_back({children, 0, weight});
    }
    return false;
}
} // namespace

/// All memory of one parse, given back in one go, which also makes it possible to leave the parser in the middle. It
/// is C without state of its own, so a jump out of it skips no clean-up but that of its memory.
class HtmlTree::Arena
{
public:
    Arena(qsizetype size, HtmlPatience patience)
        : Deadline_(ProcessorTime() + (patience == HtmlPatience::Little ? LittleTime : UsualTime(size)))
    {
    }
    ~Arena()
    {
        while (Blocks_ != nullptr)
            std::free(std::exchange(Blocks_, Blocks_->Next));
    }
    Arena(const Arena&) = delete;
    Arena& operator=(const Arena&) = delete;

    const GumboNode* Parse(const QByteArray& page, GumboTag context, GumboNamespaceEnum contextNamespace)
    {
        GumboOptions options = kGumboDefaultOptions;
        options.fragment_context = context;
        options.fragment_namespace = contextNamespace;
        options.allocator = [](void* arena, size_t size) { return static_cast<Arena*>(arena)->Allocate(size); };
        options.deallocator = [](void*, void*) {};
        options.userdata = this;
        options.max_errors = 0;
        // No frame between here and Allocate is C++.
        if (setjmp(GiveUp_) != 0)
            return nullptr;
        const GumboNode* document =
            gumbo_parse_with_options(&options, page.constData(), static_cast<size_t>(page.size()))->document;
        return IsDeeperThan(document, DeepestPage) ? nullptr : document;
    }

private:
    struct alignas(Alignment) Block
    {
        Block* Next;
    };

    void* Allocate(size_t size)
    {
        size = (size + Alignment - 1) / Alignment * Alignment;
        if (++Calls_ % CallsBetweenClocks == 0 && ProcessorTime() > Deadline_)
            std::longjmp(GiveUp_, 1);
        if (size > Left_)
            AddBlock(size);
        void* memory = Next_;
        Next_ += size;
        Left_ -= size;
        return memory;
    }
    void AddBlock(size_t needed)
    {
        const size_t size = std::max(needed, BlockSize_);
        BlockSize_ = std::min(BlockSize_ * 2, LargestBlockSize);
        Total_ += size;
        void* memory = Total_ > MemoryLimit ? nullptr : std::malloc(sizeof(Block) + size);
        if (memory == nullptr)
            std::longjmp(GiveUp_, 1);
        Blocks_ = new (memory) Block{Blocks_};
        Next_ = reinterpret_cast<char*>(Blocks_ + 1);
        Left_ = size;
    }

    std::jmp_buf GiveUp_;
    std::chrono::nanoseconds Deadline_; ///< Of this thread's processor time.
    Block* Blocks_ = nullptr;
    char* Next_ = nullptr;
    size_t BlockSize_ = FirstBlockSize;
    size_t Left_ = 0;
    size_t Total_ = 0;
    unsigned Calls_ = 0;
};

HtmlTree::HtmlTree(const QByteArray& page, HtmlPatience patience)
    : Page_(page),
      Arena_(std::make_unique<Arena>(page.size(), patience)),
      Root_(Arena_->Parse(Page_, GUMBO_TAG_LAST, GUMBO_NAMESPACE_HTML))
{
}

HtmlTree::HtmlTree(const QByteArray& fragment, const QByteArray& contextName, HtmlNamespace contextNamespace,
                   HtmlPatience patience)
    : Page_(fragment),
      Arena_(std::make_unique<Arena>(fragment.size(), patience)),
      Root_(Arena_->Parse(Page_, gumbo_tag_enum(contextName.constData()), GumboNamespace(contextNamespace)))
{
}

const GumboInternalNode* HtmlTree::HtmlElementNode() const
{
    if (Root_ == nullptr)
        return nullptr;
    const GumboVector& children = Root_->v.document.children;
    for (unsigned i = 0; i < children.length; ++i) {
        const auto* child = static_cast<const GumboNode*>(children.data[i]);
        if (child->type == GUMBO_NODE_ELEMENT)
            return child;
    }
    return nullptr;
}

HtmlTree::~HtmlTree() = default;
