// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Composition.h"
#include "platform/files/WorkClaim.h"

#include <QString>

#include <memory>
#include <vector>

/// What somebody is writing, as it stands at the moment, in a file beside the user's own settings: a desk that dies
/// leaves it there for the next start. Nothing of it is in the station. One compose window owns one; a file whose desk
/// is alive is nobody else's.
class UnsentText
{
public:
    struct Content
    {
        QString Station;        ///< The folder.
        qint32 Draft = 0;       ///< The stored draft that it continues; 0 for none.
        QByteArray DraftDigest; ///< What that draft said then: DigestOf.
        Composition Text;
    };

    /// folder: of this account alone; made when the first text is kept.
    explicit UnsentText(const QString& folder);
    UnsentText(UnsentText&&) = default;
    UnsentText& operator=(UnsentText&&) = default;
    /// Leaves the file where it is; it counts as abandoned from then on.
    ~UnsentText() = default;

    /// Takes the place of what was kept before. Attachments are written when they are others.
    FileStatus Keep(const Content& content);
    /// Nothing is to be found any more: it was stored, or given up.
    void Forget();

    /// A text that a desk left behind which is not running any more, and its file, which belongs to the finder now.
    struct Found;
    /// All of the station in that folder. What cannot be read is left out, and stays.
    static std::vector<Found> Abandoned(const QString& folder, const QString& station);
    /// Two compositions that say the same have the same.
    static QByteArray DigestOf(const Composition& composition);

private:
    bool Read(Content& content);
    QString FilesName() const;

    QString Folder_;
    QString Name_; ///< The whole path; empty until something is kept.
    std::unique_ptr<WorkClaim> Claim_;
    QList<ComposedFile> KeptFiles_;
};

struct UnsentText::Found
{
    UnsentText File;
    Content Kept;
};
