// SPDX-License-Identifier: Apache-2.0
#include "prizes/PrizesListTest.h"

#include "platform/records/DBEngine.h"

#include <QLineEdit>
#include <QSignalSpy>

PrizesListTest::PrizesListTest() : List(std::make_unique<uPrizesList>())
{
    Grid = &Child<FlexGrid>("grdPrizes");
    Tree = &Child<CategoryTreeView>("treeCategories");
    Box = &Child<FindBox>("comboFind");
    List->resize(900, 600);
    QObject::connect(List.get(), &uPrizesList::DisplayUpdated, List.get(), [this] { ++Fills_; });
    QObject::connect(List.get(), &uPrizesList::PrizeSelected, List.get(),
                     [this](const cPrizePtr& prize) { Selections_.append(prize ? prize->Reference() : 0); });
}

PrizesListTest::~PrizesListTest()
{
    if (List)
        List->close();
    List.reset();
}

qint32 PrizesListTest::Save(const QString& title, const std::function<void(cPrize&)>& change)
{
    if (!Station->IsOpen())
        OpenStation();
    const auto prize = std::make_shared<cPrize>();
    prize->SetTitle(title);
    prize->SetNumberSupplied(5);
    if (change)
        change(*prize);
    EXPECT_TRUE(Station->SavePrize(prize));
    return prize->Reference();
}

QList<qint32> PrizesListTest::SaveMany(int count)
{
    if (!Station->IsOpen())
        OpenStation();
    QList<qint32> references;
    dao::DBEngine::BeginTrans();
    for (int i = 1; i <= count; ++i)
        references.append(Save(QStringLiteral("Prize %1").arg(i)));
    dao::DBEngine::CommitTrans();
    return references;
}

void PrizesListTest::Award(qint32 prizeReference, qint32 contact)
{
    const cPrizeWinnerPtr winner = Station->GetNewPrizeWinner(Station->GetPrize(prizeReference, false));
    ASSERT_NE(winner, nullptr);
    winner->SetWinnerReference(contact);
    EXPECT_TRUE(Station->SavePrizeWinner(winner));
}

void PrizesListTest::ChangeRow(qint32 reference, const QString& field, const QVariant& value)
{
    const auto table = OpenTable(QStringLiteral("Prizes"));
    table->SetIndex(QStringLiteral("Main"));
    table->Seek(dao::SeekComparison::Equal, {reference});
    ASSERT_FALSE(table->NoMatch());
    table->Edit();
    table->SetCollect(field, value);
    table->Update();
}

void PrizesListTest::Attach(enPrizeListCategory category)
{
    if (!Station->IsOpen())
        OpenStation();
    Directory.User.Preferences.insert(QStringLiteral("SelectedPrizeCategory"), static_cast<int>(category));
    List->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(List.get()));
    List->SetTolvaDatabase(Station.get());
    TakeFills();
    TakeSelections();
}

QStringList PrizesListTest::Titles() const
{
    QStringList titles;
    for (int row = 1; row < Grid->Rows(); ++row)
        titles.append(Grid->TextMatrix(row, 1).section(QLatin1Char('\r'), 0, 0));
    return titles;
}

QStringList PrizesListTest::SecondLines() const
{
    QStringList lines;
    for (int row = 1; row < Grid->Rows(); ++row)
        lines.append(Grid->TextMatrix(row, 1).section(QLatin1Char('\r'), 1));
    return lines;
}

QList<qint32> PrizesListTest::References() const
{
    QList<qint32> references;
    for (int row = 1; row < Grid->Rows(); ++row)
        references.append(Grid->TextMatrix(row, 0).toInt());
    return references;
}

void PrizesListTest::Find(const QString& text)
{
    Box->setFocus();
    Box->lineEdit()->selectAll();
    QTest::keyClicks(Box->lineEdit(), text);
    QTest::keyClick(Box->lineEdit(), Qt::Key_Return);
}

QPoint PrizesListTest::RowPosition(int row) const
{
    return Grid->visualRect(Grid->model()->index(row - 1, 1)).center();
}

void PrizesListTest::ClickRow(int row)
{
    QTest::mouseClick(Grid->viewport(), Qt::LeftButton, {}, RowPosition(row));
}

QPoint PrizesListTest::NodePosition(int category) const
{
    const QString key = QStringLiteral("c%1").arg(category);
    for (QTreeWidgetItemIterator item(Tree); *item; ++item) {
        if (Tree->KeyOfItem(**item) == key)
            return Tree->visualItemRect(*item).center();
    }
    ADD_FAILURE() << "no node " << category;
    return {};
}

void PrizesListTest::ClickNode(int category)
{
    QTest::mouseClick(Tree->viewport(), Qt::LeftButton, {}, NodePosition(category));
}

cTolvaDatabase& PrizesListTest::OtherComputer()
{
    if (!Other_) {
        Other_ = std::make_unique<cTolvaDatabase>();
        Other_->SetDirectoryDatabase(&Directory);
        EXPECT_EQ(Other_->OpenTolvaDatabase(Folder.path()), 0);
    }
    return *Other_;
}

void PrizesListTest::Tick()
{
    const float interval = List->AutoUpdateInterval();
    QSignalSpy ticks(&Timer(), &QTimer::timeout);
    List->SetAutoUpdateInterval(0.001F);
    EXPECT_TRUE(ticks.wait(10'000));
    List->SetAutoUpdateInterval(interval);
}

void PrizesListTest::AtYield(int n, const std::function<void()>& action)
{
    Ui.DoAtYields([this, at = Ui.Yields() + n, action] {
        if (Ui.Yields() == at)
            action();
    });
}
