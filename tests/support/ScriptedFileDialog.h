// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/FileDialog.h"

#include <QList>

/// What FileDialog::Create makes for the life of this object: dialogs in which the user chooses what the test wrote
/// down beforehand, in that order. The test fails for a dialog that was not written down and for one that did not come.
/// The factory that was installed before is back afterwards.
class ScriptedFileDialog
{
public:
    enum class Kind
    {
        Open,
        Save
    };
    /// What the dialog was to look like when it was shown.
    struct Request
    {
        Kind Shown = Kind::Open;
        QString Filter;
        int FilterIndex = 1;
        QString DialogTitle;
        int Flags = 0;
        bool CancelError = false;
        QString InitDir;
        QString Filename;
        QString DefaultExt;
    };

    ScriptedFileDialog();
    ~ScriptedFileDialog();
    ScriptedFileDialog(const ScriptedFileDialog&) = delete;
    ScriptedFileDialog& operator=(const ScriptedFileDialog&) = delete;

    /// The user chooses this file.
    void ExpectOpen(const QString& choice) { Expected_.append({Kind::Open, false, choice}); }
    void ExpectOpenSeveral(const QStringList& choice)
    {
        Expected_.append({Kind::Open, false, choice.value(0), choice});
    }
    void ExpectSave(const QString& choice) { Expected_.append({Kind::Save, false, choice}); }
    void ExpectOpenCancelled() { Expected_.append({Kind::Open, true, QString()}); }
    void ExpectSaveCancelled() { Expected_.append({Kind::Save, true, QString()}); }

    /// What came, in order, whether it was expected or not.
    const QList<Request>& Requests() const { return Requests_; }

private:
    class Dialog;
    struct Expectation
    {
        Kind Shown;
        bool Cancelled;
        QString Choice;
        QStringList Choices = {};
    };
    void Answer(FileDialog& dialog, Kind kind);

    FileDialog::Factory Before_;
    QList<Expectation> Expected_;
    QList<Request> Requests_;
};
