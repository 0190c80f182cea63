#pragma once

#include <QComboBox>
#include <QElapsedTimer>

/// The box of the find bar. Enter, and "+" as well, ask for the search; its user fills the list when it drops down.
class FindBox : public QComboBox
{
    Q_OBJECT

public:
    explicit FindBox(QWidget* parent = nullptr);

    QString Text() const { return currentText(); }
    void SetText(const QString& text) { setEditText(text); }
    /// As it is about to drop down: the list's entries, while the typed text stays.
    void SetEntries(const QStringList& entries);
    void showPopup() override;
    /// Somebody typed a moment ago and may go on.
    bool IsBeingTyped() const;

Q_SIGNALS:
    void DropDown();
    /// An entry was chosen, or the search was asked for.
    void Click();
    void LostFocus();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    QElapsedTimer SinceTyped_;
};

/// Selects the whole text of a box.
void SelectControlText(FindBox& box);
