// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "platform/records/Types.h"

#include <QByteArray>
#include <QString>
#include <QVariant>

namespace dao
{

class Recordset;

/// Whether a memo that is not what was saved is refused or handed over as it is.
enum class MemoTrust
{
    Verified,
    AsStored
};

/// The beginning of a memo as it stands in the file.
struct MemoBeginning
{
    QByteArray Utf8; ///< May end within a character. A null array for Null.
    bool IsWhole = false;
};

/// A field: the definition of a column in a TableDef or an Index, or a column of a Recordset's current row. Owned by
/// the collection it stands in.
class TOLVA_EXPORT Field
{
public:
    /// A definition. size: characters of a text field, 0 for the default of 255; meaningless for other types.
    Field(const QString& name, DataTypeEnum type, int size);

    const QString& Name() const { return Name_; }
    DataTypeEnum Type() const { return Type_; }
    /// Characters a text field holds (255 when it was created with 0), octets of a number, 0 for a memo.
    int Size() const { return Size_; }
    int Attributes() const { return Attributes_; }
    /// Before the field is appended.
    void SetAttributes(int attributes) { Attributes_ = attributes; }
    /// Whether a text or memo field takes the empty text; where it does not, an empty text is stored as Null.
    bool AllowZeroLength() const { return AllowZeroLength_; }
    void SetAllowZeroLength(bool allow) { AllowZeroLength_ = allow; }

    /// The value in the recordset's current row, or in its edit buffer between AddNew or Edit and Update. Invalid for
    /// Null. A memo is read from the file when it is asked for. Error 3021 without a current row, 3420 on a definition,
    /// 3428 for a memo that was changed on the disk since it was saved.
    QVariant Value() const;
    /// Error 3020 outside AddNew and Edit; 3163 for a text longer than the field; 6 for a number outside the type; 3421
    /// for a value that cannot be converted. A refused value leaves the buffer as it was.
    void SetValue(const QVariant& value);

    /// The value of a memo whose characters are all below U+0100, one octet a character: the same value as Value()
    /// without the cost of widening megabytes. Null array for Null. Error 13 when a character is above U+00FF.
    /// AsStored: no error 3428 and no error 13; what is no such character comes as the octets that stand in the file.
    QByteArray Octets(MemoTrust trust = MemoTrust::Verified) const;
    /// The first octets of a text or memo, about so many, as they stand in the file: for who shows what a memo begins
    /// with, of many rows. They are not checked against what was saved, which takes the whole memo. Where its engine
    /// can, a recordset of a query reads no more than that. Errors as for Value, but 3428.
    MemoBeginning Beginning(qsizetype mostOctets) const;
    /// A number made of the value: the same for the same value of this field in recordsets of one type, in every
    /// process. Costs less than the value.
    quint64 Hash() const;
    /// The same value as SetValue with each octet as the character U+0000 to U+00FF. A null array stores Null.
    void SetOctets(const QByteArray& octets);

private:
    friend class Recordset;

    QString Name_;
    DataTypeEnum Type_;
    int Size_;
    int Attributes_ = 0;
    bool AllowZeroLength_ = false;
    Recordset* Recordset_ = nullptr;
    int Ordinal_ = -1;
};

} // namespace dao
