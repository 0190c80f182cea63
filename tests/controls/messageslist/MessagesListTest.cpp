// SPDX-License-Identifier: Apache-2.0
#include "messageslist/MessagesListTest.h"

#include <QLineEdit>

MessagesListTest::MessagesListTest() : List(std::make_unique<uMessagesList>())
{
    Grid = &Child<FlexGrid>("grdMessages");
    Tree = &Child<CategoryTreeView>("treeCategories");
    Box = &Child<FindBox>("comboFind");
    Tabs = &Child<TabStrip>("tbsMessages");
    List->resize(900, 600);
    QObject::connect(List.get(), qOverload<QString&>(&uMessagesList::UpdateDisplay), List.get(),
                     [this](QString& query) {
                         LastQuery_ = query;
                         ++Fills_;
                     });
}

MessagesListTest::~MessagesListTest()
{
    List->close();
    List.reset();
}

void MessagesListTest::Attach()
{
    if (!Station->IsOpen())
        OpenStation();
    List->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(List.get()));
    List->SetTolvaDatabase(Station.get());
    TakeFills();
}

QStringList MessagesListTest::Column(int column) const
{
    QStringList texts;
    for (int row = 1; row < Grid->Rows(); ++row)
        texts.append(Grid->TextMatrix(row, column));
    return texts;
}

QStringList MessagesListTest::Subjects() const
{
    QStringList subjects = Column(2);
    for (QString& subject : subjects)
        subject = subject.section(QLatin1Char('\r'), 0, 0);
    return subjects;
}

void MessagesListTest::Find(const QString& text)
{
    Box->setFocus();
    Box->lineEdit()->selectAll();
    QTest::keyClicks(Box->lineEdit(), text);
    QTest::keyClick(Box->lineEdit(), Qt::Key_Return);
}

QPoint MessagesListTest::RowPosition(int row) const
{
    return Grid->visualRect(Grid->model()->index(row - 1, 2)).center();
}

void MessagesListTest::ClickRow(int row)
{
    QTest::mouseClick(Grid->viewport(), Qt::LeftButton, {}, RowPosition(row));
}

QPoint MessagesListTest::NodePosition(int category) const
{
    const QString key = QStringLiteral("c%1").arg(category);
    for (QTreeWidgetItemIterator item(Tree); *item; ++item) {
        if (Tree->KeyOfItem(**item) == key)
            return Tree->visualItemRect(*item).center();
    }
    ADD_FAILURE() << "no folder " << category;
    return {};
}

void MessagesListTest::ClickNode(int category)
{
    QTest::mouseClick(Tree->viewport(), Qt::LeftButton, {}, NodePosition(category));
}
