// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/cMessages.h"
#include "platform/html/SafeDocument.h"

#include <QStringList>

class cTolvaDatabase;

/// The station's page templates, and messages on pages: a template filled from them, made safe for a browser and a
/// printer. Prizes on pages are PrizePage's.
namespace PagePrinting
{

/// One template of the station. Its name is that of its file without ".htm": "Message-Single message".
struct PageTemplate
{
    QString Name;
    QString Title; ///< As people read it: "Single message".
    QString Text;
};

/// What a template is filled from.
enum class TemplateKind
{
    Messages,
    Prizes,
    OnAir ///< The running order.
};

/// The names of the station's templates of a kind: for messages those of one message, then those of lists.
QStringList TemplateNames(const cTolvaDatabase& database, TemplateKind kind = TemplateKind::Messages);
QString TitleOf(const QString& name);
/// The template of that kind and of that name or title in any case, or in the .htm file of that path. Failure that
/// names those there are (data), and for one that cannot be read (no input).
PageTemplate FindTemplate(const cTolvaDatabase& database, const QString& nameOrPath,
                          TemplateKind kind = TemplateKind::Messages);

struct PageOptions
{
    bool UnreadIsBold = false;
    bool PendingIsItalic = false;
    /// Each message begins a page; of no effect on a template with a list of its own, which says itself where pages
    /// begin.
    bool PageEach = false;
};

/// Messages in their order, each as it may be printed. Preparing one reads and rewrites its mail, so that a caller with
/// many shows its progress between them.
class PreparedMessages
{
public:
    /// False when there are more than a page can take (32,767). The message itself is left as it is.
    bool Add(const cMessagePtr& message);
    int Count() const { return Messages_.Count(); }
    /// How many of them have pictures or the like elsewhere, which were left out.
    int CountWithheld() const { return CountWithheld_; }

    /// The template filled, which MakeDocumentSafe makes a page of. The messages may be used again.
    QString FilledTemplate(const PageTemplate& pageTemplate, const PageOptions& options);
    /// Both.
    SafeDocument Fill(const PageTemplate& pageTemplate, const PageOptions& options);

private:
    cMessages Messages_;
    int CountWithheld_ = 0;
};

/// "Pictures of 2 messages would have been fetched from elsewhere and were left out."; empty for none.
QString WithheldWords(int messages);

} // namespace PagePrinting
