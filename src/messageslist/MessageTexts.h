// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Date.h"
#include "messageslist/RowFace.h"
#include "platform/widgets/FlexGridModel.h"

#include <functional>
#include <memory>

/// What the texts of a message's row are made of.
struct RowSource
{
    using PersonOf = std::shared_ptr<const std::function<QString(const QString& header)>>;
    using Notes = std::shared_ptr<const std::function<QString(qint32)>>;

    QByteArray Subject; ///< As the mail holds it.
    QByteArray From;    ///< The same.
    QByteArray To;      ///< The same, of what the station wrote.
    Date Stamp;
    qint32 Reference;
    bool HasDateLine; ///< The date stands under the subject.
    bool HasYear;     ///< The date shows its year.
    bool IsAhead;     ///< The date is still to come.
    bool IsBold;
    int MostLines; ///< Of the subject.
    std::shared_ptr<const RowFace> Face;
    PersonOf Person; ///< Null where rows show none.
    Notes Note;      ///< Null for none.
};

/// The texts of a message's row from the subject on: decoding them, writing its date in words and measuring the subject
/// cost more than all the rest of the row.
class MessageTexts final : public LateTexts
{
public:
    explicit MessageTexts(RowSource row) : Row_(std::move(row)) {}

    /// A row without a date keeps the one that it showed before.
    void Make(const Set& set) const override;
    /// That the subject takes at the width of the moment.
    int SubjectLines() const;

private:
    RowSource Row_;
};
