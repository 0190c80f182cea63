// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/mail/Message.h"

#include <QDialog>
#include <QPixmap>

#include <memory>

class PictureLoader;
class QLabel;
class QScrollArea;
class QScrollBar;

/// The pictures among the files of a message, one at a time and large: next, previous, larger, smaller, saved, by keys.
/// Shown from the message alone; nothing is fetched and no other program is asked. Deletes itself when it is closed.
class PictureWindow : public QDialog
{
    Q_OBJECT

public:
    /// files: places of the pictures among the mail's attachments; first: the one to begin with.
    PictureWindow(std::shared_ptr<cdo::Message> mail, const QList<int>& files, int first, QWidget* parent);

    /// The place of the picture on show among the mail's attachments.
    int File() const { return Files_.value(Place_); }
    /// 1 for a point of the screen for each of the picture's.
    double Scale() const { return Scale_; }

public Q_SLOTS:
    void Next() { Go(1); }
    void Previous() { Go(-1); }
    void Larger() { SetScale(Scale_ * Step); }
    void Smaller() { SetScale(Scale_ / Step); }
    /// As large as the window, and no larger than it is.
    void Whole();
    /// What is on show of a picture that is larger than the window.
    void MoveUp();
    void MoveDown();
    void MoveLeft();
    void MoveRight();
    void Save();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    static constexpr double Step = 1.25;
    class View;

    void MakeKeys();
    void Go(int step);
    void Show();
    void SetScale(double scale);
    void Fit();
    static void Move(QScrollBar* bar, int direction);
    void ShowWords(const QString& words);
    void ShowCaption(const QString& words = {});

    std::shared_ptr<cdo::Message> Mail_;
    QList<int> Files_;
    QStringList Names_;
    int Place_ = 0;
    double Scale_ = 1;
    bool FitsWindow_ = true; ///< Until the user chooses another size.
    PictureLoader* Loader_;
    View* View_;
    QScrollArea* Area_;
    QLabel* Caption_;
};
