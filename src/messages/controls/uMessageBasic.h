// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/cMessage.h"
#include "platform/Export.h"

#include <QFrame>

#include <array>
#include <functional>

class Panel3;
class PropertyBag;
class ValueLabel;
class WebBrowser;
class QLabel;

/// A view of one message: date, sender, addressee, subject, a mark for a personal message, and the body. It changes
/// nothing in the message and does not follow it: after a change the host sets it again. No smaller than 4000 by 3000
/// twips.
class TOLVA_EXPORT uMessageBasic : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(qint32 BackColour READ BackColour WRITE SetBackColour)
    Q_PROPERTY(qint32 ForeColour READ ForeColour WRITE SetForeColour)
    Q_PROPERTY(QFont Font READ Font WRITE SetFont)
    Q_PROPERTY(bool ShowBodyBorder READ ShowBodyBorder WRITE SetShowBodyBorder)

public:
    explicit uMessageBasic(QWidget* parent = nullptr);
    ~uMessageBasic() override;

    /// The background of the panel and of its labels, as SystemColour has colours.
    qint32 BackColour() const;
    void SetBackColour(qint32 colour);
    /// The text of the labels; where it could not be read on the background, its nearest shade that can be is drawn.
    qint32 ForeColour() const { return ForeColour_; }
    void SetForeColour(qint32 colour);
    const QFont& Font() const { return Font_; }
    void SetFont(const QFont& font);
    bool ShowBodyBorder() const { return ShowBodyBorder_; }
    void SetShowBodyBorder(bool show);

    /// The date is that of the sender's clock, where it has one, instead of that of arrival. Starts false.
    bool ShowsSentDate() const { return ShowsSentDate_; }
    void SetShowsSentDate(bool shows);

    /// Where the panel of personal messages is not shown, the values take its room. Starts false.
    bool UsesFreeWidth() const { return UsesFreeWidth_; }
    void SetUsesFreeWidth(bool uses);

    const cMessagePtr& Message() const { return Message_; }
    /// Null empties the view. Phone numbers of a text message are masked where the machine's settings say so.
    void SetMessage(const cMessagePtr& message);

    /// Marks stretches of the body, this one's and that of messages to come: begins and sizes of what it finds in a
    /// text. An empty one ends that.
    void SetMarker(std::function<QList<std::pair<qsizetype, qsizetype>>(const QString& text)> marker);

    /// Steps by which the body's text is larger than usual, or smaller below 0; see WebBrowser. None at first. It is no
    /// property: whoever embeds the control keeps it.
    int TextSize() const;
    void SetTextSize(int steps);

    /// "BackColour", "ForeColour", "Font" and "ShowBodyBorder".
    void ReadProperties(const PropertyBag& bag);
    void WriteProperties(PropertyBag& bag) const;

    /// What takes the focus of somebody who reads.
    QWidget& BodyPane() const;

    QSize minimumSizeHint() const override;
    QSize sizeHint() const override;

Q_SIGNALS:
    /// The user chose another size of the text, by Ctrl and the wheel or the keys.
    void TextSizeChanged(int steps);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    ValueLabel* AddRow(const char* name, const QString& caption);
    void PlaceRows();
    void PlaceParts();
    void PlaceBody();
    void ApplyColours();
    void ShowBody();
    QString DateText() const;

    Panel3* pnlMain_;
    Panel3* pnlPersonal_;
    QFrame* picBody_;
    WebBrowser* wbBody_;
    /// Date, from, to, subject.
    std::array<QLabel*, 4> Captions_{};
    std::array<ValueLabel*, 4> Values_{};
    qint32 ForeColour_ = 0;
    QFont Font_;
    bool ShowBodyBorder_ = false;
    bool ShowsSentDate_ = false;
    bool UsesFreeWidth_ = false;
    cMessagePtr Message_;
};
