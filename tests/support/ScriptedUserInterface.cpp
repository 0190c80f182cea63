// SPDX-License-Identifier: Apache-2.0
#include "support/ScriptedUserInterface.h"

#include <gtest/gtest.h>

namespace
{
QString Describe(const MessageBoxRequest& request)
{
    return QStringLiteral("message box \"%1\", title \"%2\", buttons %3, icon %4, default %5")
        .arg(request.Text, request.Title)
        .arg(static_cast<int>(request.Buttons))
        .arg(static_cast<int>(request.Icon))
        .arg(static_cast<int>(request.DefaultAnswer));
}

QString Describe(const InputBoxRequest& request)
{
    return QStringLiteral("input box \"%1\", title \"%2\", default \"%3\", length %4, masked by \"%5\"")
        .arg(request.Prompt, request.Title, request.Default)
        .arg(request.MaxLength)
        .arg(request.PasswordChar);
}

QString Describe(int number, const QString& description)
{
    return QStringLiteral("run-time error %1 \"%2\"").arg(number).arg(description);
}

void ExpectSame(const QString& expected, const QString& actual)
{
    if (expected != actual)
        ADD_FAILURE() << "expected: " << qPrintable(expected) << "\n     got: " << qPrintable(actual);
}
} // namespace

class ScriptedProgress final : public ProgressDisplay
{
public:
    ScriptedProgress(ScriptedUserInterface& owner, int cancelAt) : Owner_(owner), CancelAt_(cancelAt) {}

    bool Advance(qint64 done, qint64 total) override
    {
        if (done < 0 || done > total)
            ADD_FAILURE() << "progress of " << done << " of " << total;
        ++Owner_.Advances_;
        ++Calls_;
        return CancelAt_ == 0 || Calls_ < CancelAt_;
    }

private:
    ScriptedUserInterface& Owner_;
    int CancelAt_;
    int Calls_ = 0;
};

ScriptedUserInterface::ScriptedUserInterface() : Before_(Current())
{
    SetCurrent(this);
}

ScriptedUserInterface::~ScriptedUserInterface()
{
    SetCurrent(&Before_);
    if (BusyDepth_ != 0)
        ADD_FAILURE() << "the busy pointer was left at depth " << BusyDepth_;
    for (const Expectation& expectation : std::as_const(Expected_)) {
        QString text = QStringLiteral("the settings dialog");
        if (const auto* box = std::get_if<ExpectedMessageBox>(&expectation))
            text = Describe(box->Request);
        else if (const auto* input = std::get_if<ExpectedInputBox>(&expectation))
            text = Describe(input->Request);
        else if (const auto* error = std::get_if<ExpectedError>(&expectation))
            text = Describe(error->Number, error->Description);
        else if (std::holds_alternative<ExpectedPageSetup>(expectation))
            text = QStringLiteral("the dialog of a sheet of labels");
        ADD_FAILURE() << "did not come: " << qPrintable(text);
    }
}

/// The next expectation when it is of this kind; otherwise the test fails and the expectation stays for its turn.
template <class T>
std::optional<T> ScriptedUserInterface::Take(const QString& what)
{
    if (Expected_.isEmpty() || !std::holds_alternative<T>(Expected_.first())) {
        ADD_FAILURE() << "not expected now: " << qPrintable(what);
        return std::nullopt;
    }
    return std::get<T>(Expected_.takeFirst());
}

void ScriptedUserInterface::ExpectWarning(const QString& text, const QString& title)
{
    ExpectMessageBox({text, title, MessageBoxButtons::OK, MessageBoxIcon::Exclamation, MessageBoxAnswer::OK});
}

void ScriptedUserInterface::ExpectConfirmation(const QString& text, MessageBoxAnswer answer, const QString& title)
{
    ExpectMessageBox({text, title, MessageBoxButtons::YesNo, MessageBoxIcon::Question, MessageBoxAnswer::No}, answer);
}

void ScriptedUserInterface::ExpectMessageBox(const MessageBoxRequest& request, MessageBoxAnswer answer)
{
    Expected_.append(ExpectedMessageBox{request, answer});
}

void ScriptedUserInterface::ExpectInputBox(const InputBoxRequest& request, const QString& answer)
{
    Expected_.append(ExpectedInputBox{request, false, answer});
}

void ScriptedUserInterface::ExpectInputBoxCancelled(const InputBoxRequest& request)
{
    Expected_.append(ExpectedInputBox{request, true, QString()});
}

void ScriptedUserInterface::ExpectDatabaseSettings(std::function<bool(cTolvaDatabase&)> dialog)
{
    Expected_.append(ExpectedSettings{std::move(dialog)});
}

void ScriptedUserInterface::ExpectPageSetupLabels(std::function<void(cPageSetup&)> dialog)
{
    Expected_.append(ExpectedPageSetup{std::move(dialog)});
}

void ScriptedUserInterface::ExpectHotlist(std::function<QString(dao::Recordset& settings, bool saveMode)> dialog)
{
    Expected_.append(ExpectedHotlist{std::move(dialog)});
}

void ScriptedUserInterface::ExpectRunTimeError(int number, const QString& description)
{
    Expected_.append(ExpectedError{number, description});
}

MessageBoxAnswer ScriptedUserInterface::MessageBox(const MessageBoxRequest& request)
{
    MessageBoxes_.append(request);
    BusyAtMessageBox_.append(IsBusy());
    const auto expected = Take<ExpectedMessageBox>(Describe(request));
    if (!expected)
        return request.Buttons == MessageBoxButtons::YesNo ? MessageBoxAnswer::No : MessageBoxAnswer::OK;
    ExpectSame(Describe(expected->Request), Describe(request));
    return expected->Answer;
}

int ScriptedUserInterface::InputBox(const InputBoxRequest& request, QString& result)
{
    result.clear();
    InputBoxes_.append(request);
    const auto expected = Take<ExpectedInputBox>(Describe(request));
    if (!expected)
        return -1;
    ExpectSame(Describe(expected->Request), Describe(request));
    if (expected->Cancelled)
        return -1;
    result = expected->Answer;
    return 0;
}

bool ScriptedUserInterface::DatabaseSettings(cTolvaDatabase& database)
{
    const auto expected = Take<ExpectedSettings>(QStringLiteral("the settings dialog"));
    return expected && expected->Dialog(database);
}

void ScriptedUserInterface::PageSetupLabels(cPageSetup& pageSetup)
{
    if (const auto expected = Take<ExpectedPageSetup>(QStringLiteral("the dialog of a sheet of labels")))
        expected->Dialog(pageSetup);
}

QString ScriptedUserInterface::GetHotlist(qint32 hotListType, dao::Recordset& settings, bool saveMode, QObject*)
{
    EXPECT_EQ(hotListType, 0);
    const auto expected = Take<ExpectedHotlist>(QStringLiteral("the dialog of the hotlists"));
    return expected ? expected->Dialog(settings, saveMode) : QString();
}

void ScriptedUserInterface::SetBusyPointer(bool busy)
{
    BusyDepth_ += busy ? 1 : -1;
    BusyCount_ += busy ? 1 : 0;
    if (BusyDepth_ < 0)
        ADD_FAILURE() << "the busy pointer was put off more often than on";
}

std::unique_ptr<ProgressDisplay> ScriptedUserInterface::Progress(const QString& caption)
{
    ProgressCaptions_.append(caption);
    return std::make_unique<ScriptedProgress>(*this, std::exchange(CancelAt_, 0));
}

void ScriptedUserInterface::Yield()
{
    ++Yields_;
    if (AtYields_)
        AtYields_();
}

void ScriptedUserInterface::RunTimeError(const dao::Error& error)
{
    RunTimeErrors_.append({error.Number(), error.Description()});
    const QString described = Describe(error.Number(), error.Description());
    if (const auto expected = Take<ExpectedError>(described))
        ExpectSame(Describe(expected->Number, expected->Description), described);
}
