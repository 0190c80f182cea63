// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/html/SafeHtml.h"
#include "platform/html/StyleReader.h"
#include "platform/html/TableBudget.h"

#include <QVector>

#include <optional>

struct GumboInternalNode;
class StartTag;

/// Writes a safe page from a parsed one. Works through the tree with a stack of its own, so that no depth of nesting
/// is too deep. For one page each.
class PageWriter
{
public:
    /// The page outlives the writer.
    PageWriter(const SafeHtmlOptions& options, SafePage* page);
    void Write(const GumboInternalNode* document);

private:
    /// An element that is being written, with what its content inherits.
    struct Frame
    {
        const GumboInternalNode* Node = nullptr;
        unsigned NextChild = 0;
        QString EndTag;
        double Points = 0;
        quint32 Ground = 0xFFFFFF;
        int Depth = 0; ///< Of written elements.
        int Tables = 0;
        int Quotes = 0;
        int Columns = 0; ///< Of this row, so far.
        bool IsTable = false;
        bool IsRow = false;
        bool IsBlock = false;
        bool KeepsBlanks = false;
        bool HasUnknownGround = false; ///< A picture that was withheld lay beneath.
    };

    void WriteChild(const GumboInternalNode* node);
    void WriteText(const char* text);
    void WriteElement(const GumboInternalNode* node);
    void GoThrough(const GumboInternalNode* node, const QString& name);
    void OpenCaption(const GumboInternalNode* node);
    Frame InheritedFrame(const GumboInternalNode* node) const;
    PageStyle CountedStyle(const GumboInternalNode* node, const QString& name);
    static bool IsParagraph(const GumboInternalNode* node, const QString& name);
    void OpenElement(const GumboInternalNode* node, const QString& name);
    void OpenLink(const GumboInternalNode* node, Frame* frame, StartTag* tag);
    void OpenTable(const GumboInternalNode* node, Frame* frame, StartTag* tag);
    bool OpenCell(const GumboInternalNode* node, StartTag* tag);
    void OpenIndented(const GumboInternalNode* node, const QString& name, PageStyle* style, Frame* frame,
                      StartTag* tag);
    void WriteImage(const GumboInternalNode* node);
    void WriteMissingImage(const GumboInternalNode* node, const QString& source);
    QString EmbeddedPicture(const QString& source);
    bool IsWithheld(const GumboInternalNode* node, const QString& name);
    void CountAttributes(const GumboInternalNode* node);
    void ApplyStyle(const PageStyle& style, const QString& name, Frame* frame, StartTag* tag);
    void ApplyFontSize(const PageStyle& style, Frame* frame, StartTag* tag);
    void ApplyColours(const PageStyle& style, const QString& name, Frame* frame, StartTag* tag);
    void Push(Frame frame, const StartTag& tag);
    void Pop();
    bool IsFull() const;

    const SafeHtmlOptions& Options_;
    SafePage* Page_;
    QVector<Frame> Stack_;
    std::optional<TableBudget> Tables_;
    qsizetype WordLength_ = 0;
    qsizetype EmbeddedOctets_ = 0;
};
