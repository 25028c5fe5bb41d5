// The shared screen kit, driven through real widgets offscreen: Enter as Tab, focus
// colours, autocomplete, the money filter, masked fields, lists, the hourglass, menu twins
// and the dialog seam.

#include "keyboard.h"
#include "scriptedprompter.h"
#include "session/kit/kit.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>
#include <QVBoxLayout>

using namespace rtx::ui;
using rtx::test::ScriptedPrompter;

namespace {

const auto type = rtx::test::typeText;

QColor base(QWidget* w) {
    return w->palette().color(QPalette::Base);
}

// A small screen: three text fields, a combo box and a default button.
struct Screen {
    QDialog dialog;
    QLineEdit* a = new QLineEdit(&dialog);
    QComboBox* combo = new QComboBox(&dialog);
    QLineEdit* b = new QLineEdit(&dialog);
    QLineEdit* c = new QLineEdit(&dialog);
    QPushButton* ok = new QPushButton(QStringLiteral("OK"), &dialog);

    Screen() {
        auto* layout = new QVBoxLayout(&dialog);
        for (QWidget* w : std::initializer_list<QWidget*>{a, combo, b, c, ok})
            layout->addWidget(w);
        combo->setEditable(true);
        combo->addItems({QStringLiteral("ANTONIO CARLOS"), QStringLiteral("ANA PAULA"),
                         QStringLiteral("ANABELA")});
        combo->setEditText(QString());
        ok->setDefault(true);
        setupFields(&dialog);
        dialog.show();
        QApplication::setActiveWindow(&dialog);
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
    }
};

} // namespace

class TestKit : public QObject {
    Q_OBJECT

private slots:
    void enterMovesAsTabAndWraps();
    void focusColourAndSelectOnEntry();
    void autocompleteNarrowsCaseBlind();
    void autocompleteWithEmptyListTypes();
    void moneyKeyRules();
    void moneyFieldTyping();
    void maskedFieldDigitsAndLiterals();
    void maskedFieldMoney();
    void stripesFollowFixedRows();
    void flexGridRowsAndKeys();
    void centreScreenCentres();
    void hourglassClearedByFirstField();
    void menuEntryClicksItsButton();
    void guardedShowsStoreError();
};

void TestKit::enterMovesAsTabAndWraps() {
    Screen s;
    QSignalSpy okClicks(s.ok, &QPushButton::clicked);
    s.a->setFocus();
    QTest::keyClick(s.a, Qt::Key_Return);
    QCOMPARE(QApplication::focusWidget(), s.combo);
    QTest::keyClick(s.combo, Qt::Key_Enter); // the keypad's Enter too
    QCOMPARE(QApplication::focusWidget(), s.b);
    QTest::keyClick(s.b, Qt::Key_Return);
    QCOMPARE(QApplication::focusWidget(), s.c);
    QTest::keyClick(s.c, Qt::Key_Return);
    QCOMPARE(QApplication::focusWidget(), s.ok);
    // Enter in a field never reached the dialog's default button.
    QCOMPARE(okClicks.count(), 0);
    // From the last field of the window the focus wraps to the first, as Tab does.
    s.ok->setFocusPolicy(Qt::NoFocus);
    s.b->setFocus();
    QTest::keyClick(s.b, Qt::Key_Return);
    QTest::keyClick(s.c, Qt::Key_Return);
    QCOMPARE(QApplication::focusWidget(), s.a);
    QCOMPARE(okClicks.count(), 0);
}

void TestKit::focusColourAndSelectOnEntry() {
    Screen s;
    s.a->setText(QStringLiteral("RUA DAS FLORES"));
    s.b->setFocus();
    QCOMPARE(base(s.b), QColor(0xFF, 0xFF, 0xC0));
    QTest::keyClick(s.b, Qt::Key_Tab);
    QCOMPARE(base(s.b), QColor(0xFF, 0xFF, 0xFF));
    QCOMPARE(base(s.c), QColor(0xFF, 0xFF, 0xC0));
    // Entering a field by program selects its whole text: typing replaces it.
    s.a->setCursorPosition(0);
    s.a->setFocus();
    QCOMPARE(s.a->selectedText(), QStringLiteral("RUA DAS FLORES"));
    type(s.a, QStringLiteral("AV. SÃO JOÃO"));
    QCOMPARE(s.a->text(), QStringLiteral("AV. SÃO JOÃO"));
    QCOMPARE(base(s.a), QColor(0xFF, 0xFF, 0xC0));
    // A click that gives the focus selects the whole text as well.
    s.b->setText(QStringLiteral("CENTRO"));
    QTest::mouseClick(s.b, Qt::LeftButton, {}, QPoint(5, s.b->height() / 2));
    QCOMPARE(QApplication::focusWidget(), s.b);
    QCOMPARE(s.b->selectedText(), QStringLiteral("CENTRO"));
    QCOMPARE(base(s.a), QColor(0xFF, 0xFF, 0xFF));
}

void TestKit::autocompleteNarrowsCaseBlind() {
    Screen s;
    QLineEdit* edit = s.combo->lineEdit();
    s.combo->setFocus();
    QTest::keyClick(s.combo, 'a');
    QCOMPARE(s.combo->currentText(), QStringLiteral("ANTONIO CARLOS"));
    QCOMPARE(edit->selectedText(), QStringLiteral("NTONIO CARLOS"));
    QTest::keyClick(s.combo, 'n');
    QCOMPARE(s.combo->currentText(), QStringLiteral("ANTONIO CARLOS"));
    // The search is built from the text before the selection: "ANa" finds ANA PAULA.
    QTest::keyClick(s.combo, 'a');
    QCOMPARE(s.combo->currentText(), QStringLiteral("ANA PAULA"));
    QCOMPARE(s.combo->currentIndex(), 1);
    QCOMPARE(edit->selectedText(), QStringLiteral(" PAULA"));
    QCOMPARE(edit->selectionStart(), 3);
    QTest::keyClick(s.combo, 'b');
    QCOMPARE(s.combo->currentText(), QStringLiteral("ANABELA"));
    QCOMPARE(edit->selectedText(), QStringLiteral("ELA"));
    // No item matches: the key is typed as usual, replacing the completed tail.
    QTest::keyClick(s.combo, 'x');
    QCOMPARE(s.combo->currentText(), QStringLiteral("ANABx"));
    QTest::keyClick(s.combo, Qt::Key_Backspace);
    QCOMPARE(s.combo->currentText(), QStringLiteral("ANAB"));
    // Enter after a completion moves on and adds nothing to the list.
    s.combo->setEditText(QString());
    type(s.combo, QStringLiteral("ana"));
    QCOMPARE(s.combo->currentText(), QStringLiteral("ANA PAULA"));
    QTest::keyClick(s.combo, Qt::Key_Return);
    QCOMPARE(QApplication::focusWidget(), s.b);
    QCOMPARE(s.combo->count(), 3);
    QCOMPARE(s.combo->currentText(), QStringLiteral("ANA PAULA"));
}

void TestKit::autocompleteWithEmptyListTypes() {
    Screen s;
    s.combo->clear();
    s.combo->setFocus();
    type(s.combo, QStringLiteral("joão"));
    QCOMPARE(s.combo->currentText(), QStringLiteral("joão"));
    QVERIFY(!s.combo->lineEdit()->hasSelectedText());
}

void TestKit::moneyKeyRules() {
    QCOMPARE(moneyKey(QString(), u'7'), QChar(u'7'));
    QCOMPARE(moneyKey(QStringLiteral("12"), u'.'), QChar(u','));
    QCOMPARE(moneyKey(QStringLiteral("12"), u','), QChar(u','));
    QCOMPARE(moneyKey(QString(), u','), QChar(u',')); // a comma may come first
    QVERIFY(moneyKey(QStringLiteral("1,5"), u',').isNull());
    QVERIFY(moneyKey(QStringLiteral("1,5"), u'.').isNull());
    QCOMPARE(moneyKey(QStringLiteral("1,5"), u'\b'), QChar(u'\b'));
    for (QChar refused : {u'-', u'a', u'R', u' ', u'$', u'+'})
        QVERIFY2(moneyKey(QStringLiteral("1"), refused).isNull(), qPrintable(QString(refused)));
}

void TestKit::moneyFieldTyping() {
    Screen s;
    moneyField(s.a);
    s.a->setFocus();
    QTest::keyClicks(s.a, QStringLiteral("-12a.5,3"));
    QCOMPARE(s.a->text(), QStringLiteral("12,53"));
    QTest::keyClick(s.a, Qt::Key_Backspace);
    QCOMPARE(s.a->text(), QStringLiteral("12,5"));
    // The whole text selected still counts its comma: a new one is refused.
    s.a->selectAll();
    QTest::keyClick(s.a, ',');
    QCOMPARE(s.a->text(), QStringLiteral("12,5"));
    // Enter still moves on.
    QTest::keyClick(s.a, Qt::Key_Return);
    QCOMPARE(QApplication::focusWidget(), s.combo);

    digitsOnly(s.c);
    s.c->setFocus();
    QTest::keyClicks(s.c, QStringLiteral("1,5%2-"));
    QCOMPARE(s.c->text(), QStringLiteral("152"));
}

void TestKit::maskedFieldDigitsAndLiterals() {
    QDialog dialog;
    auto* date = new MaskEdBox(MaskEdBox::dateMask(), &dialog);
    auto* other = new QLineEdit(&dialog);
    auto* layout = new QVBoxLayout(&dialog);
    layout->addWidget(date);
    layout->addWidget(other);
    setupFields(&dialog);
    dialog.show();
    QApplication::setActiveWindow(&dialog);
    QVERIFY(QTest::qWaitForWindowActive(&dialog));

    QCOMPARE(date->text(), QString()); // untouched: empty, the mask only as a hint
    QCOMPARE(date->placeholderText(), QStringLiteral("__/__/____"));
    date->setFocus();
    QTest::keyClicks(date, QStringLiteral("25a12x2020"));
    QCOMPARE(date->text(), QStringLiteral("25/12/2020"));
    QVERIFY(date->isComplete());
    QTest::keyClicks(date, QStringLiteral("9")); // full
    QCOMPARE(date->text(), QStringLiteral("25/12/2020"));
    date->setPromptInclude(false);
    QCOMPARE(date->text(), QStringLiteral("25122020"));
    date->setText(QString());
    date->setPromptInclude(true);
    QCOMPARE(date->text(), QString());
    QVERIFY(!date->isComplete());
    // Backspace after a literal takes the digit before it.
    date->setFocus();
    QTest::keyClicks(date, QStringLiteral("2512"));
    QCOMPARE(date->text(), QStringLiteral("25/12"));
    QTest::keyClick(date, Qt::Key_Backspace);
    QCOMPARE(date->text(), QStringLiteral("25/1"));
    // Text given with or without its literals, also through a plain QLineEdit pointer.
    static_cast<QLineEdit*>(date)->setText(QStringLiteral("01022021"));
    QCOMPARE(date->shownText(), QStringLiteral("01/02/2021"));
    date->setText(QStringLiteral("03/04/2022"));
    QCOMPARE(date->digits(), QStringLiteral("03042022"));

    auto* cnpj = new MaskEdBox(QStringLiteral("##############"), &dialog);
    cnpj->setText(QStringLiteral("11.222.333/0001-81"));
    QCOMPARE(cnpj->text(), QStringLiteral("11222333000181"));
    cnpj->setMask(QStringLiteral("########/####-##")); // the digits stay
    QCOMPARE(cnpj->text(), QStringLiteral("11222333/0001-81"));
    cnpj->setMask(QStringLiteral("#########-##"));
    QCOMPARE(cnpj->text(), QStringLiteral("112223330-00")); // extra digits dropped

    QCOMPARE(MaskEdBox::applyMask(QStringLiteral("(##)####-####"), QStringLiteral("1133334444")),
             QStringLiteral("(11)3333-4444"));
    QCOMPARE(MaskEdBox::applyMask(QStringLiteral("#####-###"), QStringLiteral("01001000")),
             QStringLiteral("01001-000"));
    QCOMPARE(MaskEdBox::applyMask(QStringLiteral("(##)####-####"), QStringLiteral("11")),
             QStringLiteral("(11"));

    auto* free = new MaskEdBox(&dialog);
    free->setPromptInclude(false);
    free->setText(QStringLiteral("(11) 3333-4444 r.2"));
    QCOMPARE(free->text(), QStringLiteral("(11) 3333-4444 r.2")); // no mask: as typed
}

void TestKit::maskedFieldMoney() {
    QDialog dialog;
    auto* money = new MaskEdBox(MaskEdBox::moneyMask(), &dialog);
    auto* other = new QLineEdit(&dialog);
    auto* layout = new QVBoxLayout(&dialog);
    layout->addWidget(money);
    layout->addWidget(other);
    setupFields(&dialog);
    dialog.show();
    QApplication::setActiveWindow(&dialog);
    QVERIFY(QTest::qWaitForWindowActive(&dialog));

    QCOMPARE(money->text(), QStringLiteral("0,00"));
    money->setFocus();
    QCOMPARE(money->selectedText(), QStringLiteral("0,00"));
    QTest::keyClick(money, Qt::Key_Delete);
    QTest::keyClicks(money, QStringLiteral("-1234.5.6x"));
    QCOMPARE(money->text(), QStringLiteral("1234,56"));
    QTest::keyClick(money, Qt::Key_Return); // leaving formats it
    QCOMPARE(QApplication::focusWidget(), other);
    QCOMPARE(money->text(), QStringLiteral("1.234,56"));
    money->setFocus();
    QTest::keyClick(money, Qt::Key_Delete);
    other->setFocus();
    QCOMPARE(money->text(), QStringLiteral("0,00"));
    money->clear();
    QCOMPARE(money->text(), QStringLiteral("0,00"));
}

void TestKit::stripesFollowFixedRows() {
    const QColor cyan(0, 255, 255);
    MSFlexGrid grid;
    grid.setHeaders({QStringLiteral("Nome"), QStringLiteral("cd")});
    stripeGrid(&grid); // header only: nothing to do, no failure
    QCOMPARE(grid.rows(), 1);
    for (int i = 1; i <= 4; ++i)
        grid.addItem(QStringLiteral("N%1\t%1").arg(i));
    stripeGrid(&grid);
    for (int j = 0; j < 2; ++j) {
        QCOMPARE(grid.cellBackColor(1, j), QColor(Qt::white));
        QCOMPARE(grid.cellBackColor(2, j), cyan);
        QCOMPARE(grid.cellBackColor(3, j), QColor(Qt::white));
        QCOMPARE(grid.cellBackColor(4, j), cyan);
    }

    MSFlexGrid two;
    two.setHeaders({QStringLiteral("A"), QStringLiteral("B")});
    two.setFixedRows(2);
    for (int i = 1; i <= 4; ++i)
        two.addItem(QStringLiteral("x\ty"));
    QCOMPARE(two.rows(), 6);
    stripeGrid(&two);
    QCOMPARE(two.cellBackColor(2, 0), QColor(Qt::white));
    QCOMPARE(two.cellBackColor(3, 0), cyan);
    QCOMPARE(two.cellBackColor(4, 1), QColor(Qt::white));
    QCOMPARE(two.cellBackColor(5, 1), cyan);
}

void TestKit::flexGridRowsAndKeys() {
    MSFlexGrid grid;
    grid.setHeaders({QStringLiteral("Data"), QStringLiteral("Cliente"), QStringLiteral("cd")});
    grid.addItem(QStringLiteral("01/02/2021\tJOSÉ\t0000012"));
    grid.addItem(QStringLiteral("02/02/2021\tMARIA\t0000013\textra"));
    grid.addItem(QStringLiteral("03/02/2021"));
    QCOMPARE(grid.rows(), 4);
    QCOMPARE(grid.textMatrix(0, 1), QStringLiteral("Cliente"));
    QCOMPARE(grid.textMatrix(2, 1), QStringLiteral("MARIA"));
    QCOMPARE(grid.key(2), QStringLiteral("0000013"));
    QCOMPARE(grid.key(3), QString());
    QVERIFY(grid.editTriggers() == QAbstractItemView::NoEditTriggers);

    grid.resize(400, 200);
    grid.show();
    QVERIFY(QTest::qWaitForWindowExposed(&grid));
    QSignalSpy chosen(&grid, &MSFlexGrid::rowDoubleClicked);
    const QRect cell = grid.visualItemRect(grid.item(1, 1));
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, cell.center());
    QTest::mouseDClick(grid.viewport(), Qt::LeftButton, {}, cell.center());
    QCOMPARE(chosen.count(), 1);
    QCOMPARE(chosen.at(0).at(0).toInt(), 2);
    QCOMPARE(grid.row(), 2);
    grid.setFocus();
    grid.setRow(1);
    QTest::keyClick(&grid, Qt::Key_Return);
    QCOMPARE(chosen.count(), 2);
    QCOMPARE(chosen.at(1).at(0).toInt(), 1);

    grid.setRows(1);
    QCOMPARE(grid.rows(), 1);
    QCOMPARE(grid.textMatrix(0, 2), QStringLiteral("cd"));
}

void TestKit::centreScreenCentres() {
    QWidget screen;
    screen.resize(300, 200);
    centreScreen(&screen);
    screen.show();
    QVERIFY(QTest::qWaitForWindowExposed(&screen));
    const QRect area = screen.screen()->availableGeometry();
    QVERIFY(qAbs(screen.frameGeometry().center().x() - area.center().x()) <= 2);
    QVERIFY(qAbs(screen.frameGeometry().center().y() - area.center().y()) <= 2);
}

void TestKit::hourglassClearedByFirstField() {
    setHourglass();
    QVERIFY(hourglassShown());
    QCOMPARE(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
    setHourglass(); // one pointer, not a stack
    {
        Screen s;
        s.b->setFocus();
        QVERIFY(!hourglassShown());
        QCOMPARE(QGuiApplication::overrideCursor(), nullptr);
    }
    clearHourglass(); // harmless when already normal
    QCOMPARE(QGuiApplication::overrideCursor(), nullptr);
}

void TestKit::menuEntryClicksItsButton() {
    QPushButton button;
    QAction entry;
    QSignalSpy clicks(&button, &QPushButton::clicked);
    callsButton(&entry, &button);
    entry.trigger();
    QCOMPARE(clicks.count(), 1);

    // Enter on a focused button clicks it once, in a dialog or not.
    Screen s;
    QSignalSpy okClicks(s.ok, &QPushButton::clicked);
    s.ok->setFocus();
    QTest::keyClick(s.ok, Qt::Key_Return);
    QCOMPARE(okClicks.count(), 1);
    QWidget window;
    auto* tool = new QToolButton(&window);
    tool->setFocusPolicy(Qt::StrongFocus);
    setupFields(&window);
    window.show();
    QApplication::setActiveWindow(&window);
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QSignalSpy toolClicks(tool, &QToolButton::clicked);
    tool->setFocus();
    QTest::keyClick(tool, Qt::Key_Enter);
    QCOMPARE(toolClicks.count(), 1);
}

void TestKit::guardedShowsStoreError() {
    ScriptedPrompter prompts;
    int after = 0;
    QVERIFY(!guarded(nullptr, [&] {
        throw rtx::StoreError(QStringLiteral("no such column: C99"));
        ++after;
    }));
    QCOMPARE(after, 0);
    QCOMPARE(prompts.texts(ScriptedPrompter::Kind::Error),
             QStringList{QStringLiteral("no such column: C99")});
    QVERIFY(guarded(nullptr, [&] { ++after; }));
    QCOMPARE(after, 1);
    QCOMPARE(prompts.shown().size(), 1);
}

QTEST_MAIN(TestKit)
#include "tst_kit.moc"
