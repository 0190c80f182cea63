// SPDX-License-Identifier: Apache-2.0
#include "prizes/cPrizeWinner.h"

cPrizeWinner::cPrizeWinner() = default;

cPrizeWinner::~cPrizeWinner() = default;

void cPrizeWinner::SetEdited(bool edited)
{
    Edited_ = edited;
    Q_EMIT PrizeWinnerEdited(edited);
}

void cPrizeWinner::SetReference(qint32 reference)
{
    Reference_ = reference;
    SetEdited(true);
}

void cPrizeWinner::SetPrizeReference(qint32 reference)
{
    PrizeReference_ = reference;
    SetEdited(true);
}

void cPrizeWinner::SetWinnerReference(qint32 reference)
{
    WinnerReference_ = reference;
    SetEdited(true);
}

void cPrizeWinner::SetNotes(const QString& notes)
{
    Notes_ = notes;
    SetEdited(true);
}

void cPrizeWinner::SetNotesToSupplier(const QString& notes)
{
    NotesToSupplier_ = notes;
    SetEdited(true);
}

void cPrizeWinner::SetAwardedByReference(qint32 reference)
{
    AwardedByReference_ = reference;
    SetEdited(true);
}

void cPrizeWinner::SetWonDate(Date date)
{
    WonDate_ = date;
    SetEdited(true);
}

void cPrizeWinner::SetWonDateString(const QString& text)
{
    SetWonDate(Date::Parse(text).value_or(Date()));
}

void cPrizeWinner::SetSentByReference(qint32 reference)
{
    SentByReference_ = reference;
    SetEdited(true);
}

void cPrizeWinner::SetSentDate(Date date)
{
    SentDate_ = date;
    SetEdited(true);
}

void cPrizeWinner::SetSentDateString(const QString& text)
{
    SetSentDate(Date::Parse(text).value_or(Date()));
}

cPrizeWinnerPtr cPrizeWinner::Copy() const
{
    const cPrizeWinnerPtr copy(new cPrizeWinner);
    copy->SetAwardedByReference(AwardedByReference_);
    copy->SetEdited(Edited_);
    copy->SetNotes(Notes_);
    copy->SetNotesToSupplier(NotesToSupplier_);
    copy->SetPrizeReference(PrizeReference_);
    copy->SetReference(Reference_);
    copy->SetSentByReference(SentByReference_);
    copy->SetSentDate(SentDate_);
    copy->SetWinnerReference(WinnerReference_);
    copy->SetWonDate(WonDate_);
    return copy;
}
