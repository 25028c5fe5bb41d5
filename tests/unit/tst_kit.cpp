// The shared screen kit, driven through real widgets offscreen: Enter as Tab, focus
// colours, autocomplete, the money filter, masked fields and the date rule, actions that
// settle the fields first, lists, the hourglass and the dialog seam.

#include "keyboard.h"
#include "kit/kit.h"
#include "screendriver.h"
#include "scriptedprompter.h"
#include "store/formats.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QDialog>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;
using namespace rtx::ui;
using rtx::test::ScriptedPrompter;

namespace {

const auto type = rtx::test::typeText;
const QColor kYellow(0xFF, 0xFF, 0xC0);
const QColor kWhite(0xFF, 0xFF, 0xFF);

QColor base(QWidget* w) {
    return w->palette().color(QPalette::Base);
}

// Lays the widgets out in the window, gives them the kit and shows the window active.
void showWith(QWidget* window, std::initializer_list<QWidget*> widgets) {
    auto* layout = new QVBoxLayout(window);
    for (QWidget* w : widgets)
        layout->addWidget(w);
    setupFields(window);
    window->show();
    QApplication::setActiveWindow(window);
    QVERIFY(QTest::qWaitForWindowActive(window));
}

// A small screen: three text fields, a combo box and a default button.
struct Screen {
    QDialog dialog;
    QLineEdit* a = new QLineEdit(&dialog);
    QComboBox* combo = new QComboBox(&dialog);
    QLineEdit* b = new QLineEdit(&dialog);
    QLineEdit* c = new QLineEdit(&dialog);
    QPushButton* ok = new QPushButton(u"OK"_s, &dialog);

    Screen() {
        combo->setEditable(true);
        combo->addItems({u"ANTONIO CARLOS"_s, u"ANA PAULA"_s, u"ANABELA"_s});
        combo->setEditText(QString());
        ok->setDefault(true);
        showWith(&dialog, {a, combo, b, c, ok});
    }
};

} // namespace

class TestKit : public QObject {
    Q_OBJECT

private slots:
    void enterFocusAndHourglass() {
        setHourglass();
        QCOMPARE(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
        setHourglass(); // one pointer, not a stack
        Screen s;
        QSignalSpy okClicks(s.ok, &QPushButton::clicked);
        s.b->setFocus(); // a field taking the focus puts the pointer back
        QCOMPARE(QGuiApplication::overrideCursor(), nullptr);

        s.a->setText(u"RUA DAS FLORES"_s);
        s.a->setCursorPosition(0);
        s.a->setFocus(); // entering by program selects the whole text
        QCOMPARE(s.a->selectedText(), u"RUA DAS FLORES"_s);
        QCOMPARE(base(s.a), kYellow);
        type(s.a, u"AV. SÃO JOÃO"_s);
        QCOMPARE(s.a->text(), u"AV. SÃO JOÃO"_s);
        QTest::keyClick(s.a, Qt::Key_Return);
        QCOMPARE(QApplication::focusWidget(), s.combo);
        QCOMPARE(base(s.a), kWhite);
        QTest::keyClick(s.combo, Qt::Key_Enter); // the keypad's Enter too
        QCOMPARE(QApplication::focusWidget(), s.b);
        QTest::keyClick(s.b, Qt::Key_Return);
        QTest::keyClick(s.c, Qt::Key_Return);
        QCOMPARE(QApplication::focusWidget(), s.ok);
        QCOMPARE(okClicks.count(), 0);         // Enter in a field never reached the default button
        QTest::keyClick(s.ok, Qt::Key_Return); // on the button it clicks it, once
        QCOMPARE(okClicks.count(), 1);
        // A click that gives the focus selects the whole text as well.
        s.b->setText(u"CENTRO"_s);
        QTest::mouseClick(s.b, Qt::LeftButton, {}, QPoint(5, s.b->height() / 2));
        QCOMPARE(QApplication::focusWidget(), s.b);
        QCOMPARE(s.b->selectedText(), u"CENTRO"_s);
        // The focus moved on while a message was in front: the field left is white all the same.
        QDialog message(&s.dialog);
        message.show();
        QApplication::setActiveWindow(&message);
        s.c->setFocus();
        QApplication::setActiveWindow(&s.dialog);
        QCOMPARE(base(s.b), kWhite);
        QCOMPARE(base(s.c), kYellow);
        // From the last field of the window the focus wraps to the first, as Tab does.
        s.ok->setFocusPolicy(Qt::NoFocus);
        QTest::keyClick(s.c, Qt::Key_Return);
        QCOMPARE(QApplication::focusWidget(), s.a);
        QCOMPARE(okClicks.count(), 1);
        keepOnEscape(&s.dialog);
        QTest::keyClick(s.a, Qt::Key_Escape); // closes no screen that keeps it
        QVERIFY(s.dialog.isVisible());
        // A field of several lines selects its text on entry too.
        auto* lines = new QPlainTextEdit(&s.dialog);
        setupField(lines);
        lines->setPlainText(u"CLIENTE AGUARDA NA RECEPÇÃO"_s);
        lines->show();
        lines->setFocus();
        QCOMPARE(lines->textCursor().selectedText(), u"CLIENTE AGUARDA NA RECEPÇÃO"_s);
        QCOMPARE(base(lines), kYellow);
    }

    void buttonsOutsideDialogsTakeEnter() {
        QWidget window;
        auto* tool = new QToolButton(&window);
        tool->setFocusPolicy(Qt::StrongFocus);
        showWith(&window, {tool});
        // Outside a dialog too, Enter on a focused button clicks it once.
        QSignalSpy clicks(tool, &QToolButton::clicked);
        tool->setFocus();
        QTest::keyClick(tool, Qt::Key_Enter);
        QCOMPARE(clicks.count(), 1);
    }

    void autocompleteNarrowsCaseBlind() {
        Screen s;
        QLineEdit* edit = s.combo->lineEdit();
        s.combo->setFocus();
        QTest::keyClicks(s.combo, u"an"_s);
        QCOMPARE(s.combo->currentText(), u"ANTONIO CARLOS"_s);
        // The search is built from the text before the selection: "ANa" finds ANA PAULA.
        QTest::keyClick(s.combo, 'a');
        QCOMPARE(s.combo->currentIndex(), 1);
        QCOMPARE(edit->selectedText(), u" PAULA"_s);
        QTest::keyClick(s.combo, 'b');
        QCOMPARE(s.combo->currentText(), u"ANABELA"_s);
        QCOMPARE(edit->selectedText(), u"ELA"_s);
        // No item matches: the key is typed as usual, replacing the completed tail.
        QTest::keyClick(s.combo, 'x');
        QCOMPARE(s.combo->currentText(), u"ANABx"_s);
        QTest::keyClick(s.combo, Qt::Key_Backspace);
        QCOMPARE(s.combo->currentText(), u"ANAB"_s);
        // Enter after a completion moves on and adds nothing to the list.
        s.combo->setEditText(QString());
        type(s.combo, u"ana"_s);
        QTest::keyClick(s.combo, Qt::Key_Return);
        QCOMPARE(QApplication::focusWidget(), s.b);
        QCOMPARE(s.combo->count(), 3);
        QCOMPARE(s.combo->currentText(), u"ANA PAULA"_s);
        // An empty list: typing as usual.
        s.combo->clear();
        s.combo->setFocus();
        type(s.combo, u"joão"_s);
        QCOMPARE(s.combo->currentText(), u"joão"_s);
        QVERIFY(!edit->hasSelectedText());
    }

    void digitFields() {
        Screen s;
        digitsOnly(s.c);
        s.c->setFocus();
        QTest::keyClicks(s.c, u"1,5%2-"_s);
        QCOMPARE(s.c->text(), u"152"_s);
    }

    void maskedFields() {
        QDialog dialog;
        auto* date = new MaskEdBox(MaskEdBox::dateMask(), &dialog);
        auto* money = new MaskEdBox(MaskEdBox::moneyMask(), &dialog);
        auto* other = new QLineEdit(&dialog);
        showWith(&dialog, {date, money, other});

        QCOMPARE(date->text(), QString()); // untouched: empty, the mask only as a hint
        date->setFocus();
        QTest::keyClicks(date, u"25a12x20209"_s); // letters and the extra 9 refused
        QCOMPARE(date->text(), u"25/12/2020"_s);
        QVERIFY(date->isComplete());
        date->setPromptInclude(false);
        QCOMPARE(date->text(), u"25122020"_s);
        date->setText(QString());
        date->setPromptInclude(true);
        QVERIFY(!date->isComplete());
        // Backspace after a literal takes the digit before it.
        QTest::keyClicks(date, u"2512"_s);
        QTest::keyClick(date, Qt::Key_Backspace);
        QCOMPARE(date->text(), u"25/1"_s);
        // Text given with or without its literals, also through a plain QLineEdit pointer.
        static_cast<QLineEdit*>(date)->setText(u"01022021"_s);
        QCOMPARE(date->shownText(), u"01/02/2021"_s);
        date->setText(u"03/04/2022"_s);
        QCOMPARE(date->digits(), u"03042022"_s);

        auto* cnpj = new MaskEdBox(u"##############"_s, &dialog);
        cnpj->setText(u"11.222.333/0001-81"_s);
        QCOMPARE(cnpj->text(), u"11222333000181"_s);
        cnpj->setMask(u"########/####-##"_s); // the digits stay
        QCOMPARE(cnpj->text(), u"11222333/0001-81"_s);
        cnpj->setMask(u"#########-##"_s);
        QCOMPARE(cnpj->text(), u"112223330-00"_s); // extra digits dropped

        // A CNPJ with letters: the 'A' places take digits and letters, lower case typed goes
        // in as capitals, the check digits stay digits; a digit mask still refuses letters.
        auto* lettered = new MaskEdBox(u"AA.AAA.AAA/AAAA-##"_s, &dialog);
        lettered->setFocus();
        QTest::keyClicks(lettered, u"12abc-345/01de35x9"_s);
        QCOMPARE(lettered->text(), u"12.ABC.345/01DE-35"_s);
        QCOMPARE(lettered->digits(), u"12ABC34501DE35"_s);
        QVERIFY(lettered->isComplete());
        lettered->setText(u"12ABC34501DEX5"_s); // a letter where a check digit stands
        QCOMPARE(lettered->text(), u"12.ABC.345/01DE-"_s);
        lettered->setMask(u"########/####-##"_s); // a digit mask drops the letters
        QCOMPARE(lettered->text(), u"1234501"_s);
        cnpj->setFocus();
        cnpj->clear();
        QTest::keyClicks(cnpj, u"12abc"_s);
        QCOMPARE(cnpj->text(), u"12"_s);

        QCOMPARE(money->text(), u"0,00"_s);                            // untouched: zero
        QCOMPARE(moneyTextFits(u"99.999.999,999"_s), MoneyText::Fits); // a comma to regroup
        QCOMPARE(moneyTextFits(u"999.999.999,"_s), MoneyText::TooLarge);
        QCOMPARE(moneyTextFits(u"1,2.3"_s), MoneyText::NotMoney);
        QCOMPARE(moneyTextFits(u"\u0661"_s), MoneyText::NotMoney); // a digit, not ours
    }

    // What a money field lets in, typed or pasted by any way, the masked one and a plain
    // field given moneyField(): a key replaces the selection, a comma typed first stands for
    // 0, leaving formats, nothing above the largest amount goes in (said so), and a paste
    // that is no money is refused with its message by keys and menu, and silently by drop
    // or a paste the field does not see. An amount that cannot be read when leaving is said
    // so, keeps its text and the focus, and is never taken as zero.
    void moneyFieldTakesOnlyMoney_data() {
        QTest::addColumn<bool>("masked");
        QTest::addColumn<QString>("start");
        QTest::addColumn<int>("at");      // the cursor; -1: the whole text selected
        QTest::addColumn<QString>("way"); // keys (\b Backspace, \x7f Delete, \t leave), or
                                          // how the clipboard text goes in
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QStringList>("said");
        const QStringList none;
        const QStringList tooMuch{rtx::tooMuchMoneyMessage()};
        const auto bad = [](const QString& t) { return QStringList{badMoneyMessage(t)}; };
        const auto row = [](const char* name, bool masked, const QString& start, int at,
                            const QString& way, const QString& input, const QString& shown,
                            const QStringList& said) {
            QTest::newRow(name) << masked << start << at << way << input << shown << said;
        };
        row("plain: junk keys", false, u""_s, -1, u"keys"_s, u"-12a.5,3 $+."_s, u"12,53"_s, none);
        row("plain: backspace", false, u"12,53"_s, 5, u"keys"_s, u"\b"_s, u"12,5"_s, none);
        row("plain: comma over selection", false, u"12,5"_s, -1, u"keys"_s, u","_s, u"0,"_s, none);
        row("plain: comma first", false, u""_s, -1, u"keys"_s, u",5"_s, u"0,5"_s, none);
        row("plain: negative pasted", false, u"0,5"_s, -1, u"ctrl+v"_s, u"-5,00"_s, u"0,5"_s,
            bad(u"-5,00"_s));
        row("plain: paste slot", false, u"0,5"_s, -1, u"slot"_s, u"-5,00"_s, u"0,5"_s, none);
        row("points kept apart", true, u"0,00"_s, -1, u"keys"_s, u"\x7f-1234.5.6x\t"_s,
            u"1.234,56"_s, none);
        row("emptied is zero", true, u"5,00"_s, -1, u"keys"_s, u"\x7f\t"_s, u"0,00"_s, none);
        row("grouped", true, u"0,00"_s, -1, u"keys"_s,
            u"\x7f"
            u"12.345.678,9\t"_s,
            u"12.345.678,90"_s, none);
        row("fourth decimal", true, u"0,00"_s, -1, u"keys"_s,
            u"\x7f"
            u"12,3456\t"_s,
            u"12,345"_s, bad(u"12,345"_s));
        row("comma 5", true, u"0,00"_s, -1, u"keys"_s, u",5\t"_s, u"0,50"_s, none);
        row("point 5", true, u"0,00"_s, -1, u"keys"_s, u".5\t"_s, u"0,50"_s, none);
        row("a comma alone", true, u"0,00"_s, -1, u"keys"_s, u"\x7f,\t"_s, u"0,00"_s, none);
        row("one digit too many", true, u"0,00"_s, -1, u"keys"_s, u"999999999"_s, u"99999999"_s,
            tooMuch);
        row("the largest", true, u"0,00"_s, -1, u"keys"_s, u"99999999,99\t"_s, u"99.999.999,99"_s,
            none);
        row("too many before the comma", true, u"99.999.999,99"_s, 10, u"keys"_s, u"0"_s,
            u"99.999.999,99"_s, tooMuch);
        row("negative by ctrl+v", true, u"0,00"_s, -1, u"ctrl+v"_s, u"-5,00"_s, u"0,00"_s,
            bad(u"-5,00"_s));
        row("letters by shift+insert", true, u"0,00"_s, -1, u"shift+insert"_s, u"abc"_s, u"0,00"_s,
            bad(u"abc"_s));
        row("too large pasted", true, u"0,00"_s, -1, u"ctrl+v"_s, u"123.456.789,00"_s, u"0,00"_s,
            tooMuch);
        row("amount pasted", true, u"0,00"_s, -1, u"ctrl+v"_s, u" 1.234,56\n"_s, u"1.234,56"_s,
            none);
        row("menu", true, u"1.234,56"_s, -1, u"menu"_s, u"-5,00"_s, u"1.234,56"_s, bad(u"-5,00"_s));
        row("slot", true, u"1.234,56"_s, -1, u"slot"_s, u"-5,00"_s, u"1.234,56"_s, none);
        for (const QString& dropped : {u"-"_s, u"abc"_s, u"99999"_s}) // 999.991.234,56
            row(qPrintable(u"drop "_s + dropped), true, u"1.234,56"_s, -1, u"drop"_s, dropped,
                u"1.234,56"_s, none);
        row("drop that fits", true, u"1.234,56"_s, -1, u"drop"_s, u"2"_s, u"21.234,56"_s, none);
    }

    void moneyFieldTakesOnlyMoney() {
        QFETCH(bool, masked);
        QFETCH(QString, start);
        QFETCH(int, at);
        QFETCH(QString, way);
        QFETCH(QString, input);
        QFETCH(QString, shown);
        QFETCH(QStringList, said);
        QDialog dialog;
        auto* mask = masked ? new MaskEdBox(MaskEdBox::moneyMask(), &dialog) : nullptr;
        QLineEdit* money = mask ? mask : new QLineEdit(&dialog);
        auto* other = new QLineEdit(&dialog);
        if (!mask) moneyField(money);
        showWith(&dialog, {money, other});
        ScriptedPrompter prompts;
        money->setText(start);
        other->setFocus();
        money->setFocus();
        if (at < 0)
            money->selectAll();
        else
            money->setCursorPosition(at);

        QGuiApplication::clipboard()->setText(input);
        if (way == u"keys"_s) {
            for (QChar c : input)
                if (c == u'\b')
                    QTest::keyClick(money, Qt::Key_Backspace);
                else if (c == u'\x7f')
                    QTest::keyClick(money, Qt::Key_Delete);
                else if (c == u'\t')
                    QTest::keyClick(money, Qt::Key_Tab);
                else
                    QTest::keyClicks(money, QString(c));
        } else if (way == u"ctrl+v"_s) {
            QTest::keyClick(money, Qt::Key_V, Qt::ControlModifier);
        } else if (way == u"shift+insert"_s) {
            QTest::keyClick(money, Qt::Key_Insert, Qt::ShiftModifier);
        } else if (way == u"slot"_s) {
            money->paste();
        } else if (way == u"menu"_s) {
            QContextMenuEvent menuKey(QContextMenuEvent::Keyboard, QPoint(4, 4),
                                      money->mapToGlobal(QPoint(4, 4)));
            QApplication::sendEvent(money, &menuKey);
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            QVERIFY(menu);
            auto* paste = menu->findChild<QAction*>(u"edit-paste"_s);
            QVERIFY(paste);
            paste->trigger();
            menu->close();
        } else { // dropped at the start of the text (the amount stands to the right)
            QMimeData data;
            data.setText(input);
            const QPoint point(money->width() -
                                   money->fontMetrics().horizontalAdvance(money->text()) - 6,
                               money->height() / 2);
            QDragEnterEvent enter(point, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(money, &enter);
            QDropEvent drop(point, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(money, &drop);
        }
        QCOMPARE(money->text(), shown);
        QCOMPARE(prompts.texts(), said);
        if (input.endsWith(u'\t')) { // refused on leaving: the focus stays, no amount
            QCOMPARE(QApplication::focusWidget(), said.isEmpty() ? other : money);
            if (!said.isEmpty()) QVERIFY(!mask->cents());
        }
    }

    void flexGridStripesRowsAndKeys() {
        const QColor cyan(0, 255, 255);
        MSFlexGrid grid;
        grid.setHeaders({u"Data"_s, u"Cliente"_s, u"cd"_s});
        stripeGrid(&grid); // header only: nothing to do, no failure
        grid.addItem(u"01/02/2021\tJOSÉ\t0000012"_s);
        grid.addItem(u"02/02/2021\tMARIA\t0000013\textra"_s);
        grid.addItem(u"03/02/2021"_s);
        grid.addItem(u"04/02/2021\tLUÍS\t0000015"_s);
        QCOMPARE(grid.key(2), u"0000013"_s);
        QCOMPARE(grid.key(3), QString());
        stripeGrid(&grid); // one fixed row: the second data row is coloured first
        for (int r = 1; r <= 4; ++r)
            for (int j = 0; j < 3; ++j)
                QCOMPARE(grid.cellBackColor(r, j), r % 2 ? QColor(Qt::white) : cyan);

        grid.resize(400, 200);
        grid.show();
        QVERIFY(QTest::qWaitForWindowExposed(&grid));
        QSignalSpy chosen(&grid, &MSFlexGrid::rowDoubleClicked);
        const QRect cell = grid.visualItemRect(grid.item(1, 1));
        QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, cell.center());
        QTest::mouseDClick(grid.viewport(), Qt::LeftButton, {}, cell.center());
        QCOMPARE(grid.row(), 2);
        grid.setFocus();
        grid.setRow(1);
        QTest::keyClick(&grid, Qt::Key_Return);
        QCOMPARE(chosen.count(), 2);
        QCOMPARE(chosen.at(0).at(0).toInt(), 2);
        QCOMPARE(chosen.at(1).at(0).toInt(), 1);
        // Below the last row: the current row; in an empty list: the header, row 0.
        QTest::mouseDClick(grid.viewport(), Qt::LeftButton, {},
                           QPoint(5, grid.viewport()->height() - 3));
        QCOMPARE(chosen.at(2).at(0).toInt(), 1);

        // Two fixed rows: the parity turns.
        grid.setFixedRows(2);
        for (int i = 1; i <= 4; ++i)
            grid.addItem(u"x\ty\tz"_s);
        stripeGrid(&grid);
        for (int r = 2; r <= 5; ++r)
            QCOMPARE(grid.cellBackColor(r, 1), r % 2 ? cyan : QColor(Qt::white));
        grid.setFixedRows(1);
        grid.setRows(1);
        QTest::mouseDClick(grid.viewport(), Qt::LeftButton, {}, QPoint(5, 5));
        QCOMPARE(chosen.at(3).at(0).toInt(), 0);
    }

    // The date rule: a typed date that is no real date is said so as the field is left and
    // again at every settle, keeps its text and the focus, and is never read as another date;
    // real dates and an empty field pass, the empty one taking the screen's date for empty.
    void dateRule() {
        QDialog dialog;
        auto* date = new MaskEdBox(MaskEdBox::dateMask(), &dialog);
        auto* other = new QLineEdit(&dialog);
        showWith(&dialog, {date, other});
        ScriptedPrompter prompts;
        const auto typeAndLeave = [&](const QString& keys) {
            date->setFocus();
            date->selectAll();
            QTest::keyClick(date, Qt::Key_Delete);
            QTest::keyClicks(date, keys);
            QTest::keyClick(date, Qt::Key_Tab);
        };
        const QList<std::pair<QString, QString>> refused{{u"31022026"_s, u"31/02/2026"_s},
                                                         {u"00000000"_s, u"00/00/0000"_s},
                                                         {u"29022025"_s, u"29/02/2025"_s},
                                                         {u"2311"_s, u"23/11"_s}};
        for (const auto& [keys, shown] : refused) {
            prompts.clear();
            typeAndLeave(keys);
            QCOMPARE(prompts.texts(), QStringList{badDateMessage(shown)});
            QCOMPARE(QApplication::focusWidget(), date);
            QCOMPARE(date->shownText(), shown);
            QVERIFY(!date->date());
            QVERIFY(!date->settledDate()); // an action asks again, and is refused again
            QCOMPARE(prompts.count(ScriptedPrompter::Kind::Notice), 2);
        }

        prompts.clear();
        typeAndLeave(u"29022028"_s);
        QCOMPARE(QApplication::focusWidget(), other);
        QCOMPARE(date->date(), std::optional<QDate>(QDate(2028, 2, 29)));
        typeAndLeave(QString()); // no date for empty: it stays empty, and reads as none
        QCOMPARE(QApplication::focusWidget(), other);
        QCOMPARE(date->shownText(), QString());
        QCOMPARE(date->settledDate(), std::optional<QDate>(QDate()));
        date->setEmptyDate([] { return QDate(2030, 1, 2); });
        typeAndLeave(QString());
        QCOMPARE(date->shownText(), u"02/01/2030"_s);
        QVERIFY(prompts.texts().isEmpty());
        date->clear();
        QCOMPARE(date->settledDate(), std::optional<QDate>(QDate(2030, 1, 2)));
    }

    // An action connected by the kit settles the screen's money and date fields in the order
    // of Tab before it runs, from its button, its menu twin and its shortcut alike (none of
    // which leaves the field): the first field that cannot be read is said so once, gets the
    // focus on its tab, and the action does not run. Fields hidden, disabled, read-only or
    // of another window are not the screen's to settle.
    void actionsSettleFieldsFirst() {
        QDialog dialog;
        auto* bar = new QMenuBar(&dialog);
        QAction* entry = menuEntry(bar, u"Grava"_s, u"Grava"_s);
        entry->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_G));
        auto* tabs = new SSTab(&dialog);
        auto* first = new QWidget;
        auto* second = new QWidget;
        tabs->addTab(first, u"1"_s);
        tabs->addTab(second, u"2"_s);
        auto* text = new QLineEdit(first);
        auto* day = new MaskEdBox(MaskEdBox::dateMask(), first);
        auto* amount = new MaskEdBox(MaskEdBox::moneyMask(), second);
        auto* hidden = new MaskEdBox(MaskEdBox::moneyMask(), first);
        hidden->hide();
        auto* off = new MaskEdBox(MaskEdBox::dateMask(), first);
        off->setEnabled(false);
        auto* shownOnly = new MaskEdBox(MaskEdBox::dateMask(), first);
        shownOnly->setReadOnly(true);
        for (QWidget* page : {first, second})
            new QVBoxLayout(page);
        for (QWidget* w : std::initializer_list<QWidget*>{text, day, hidden, off, shownOnly})
            first->layout()->addWidget(w);
        second->layout()->addWidget(amount);
        auto* save = new QPushButton(u"Grava"_s, &dialog);
        showWith(&dialog, {bar, tabs, save});
        // Tab goes to the amount before the day.
        QWidget::setTabOrder(amount, day);
        QWidget::setTabOrder(text, amount);
        int runs = 0;
        onAction(save, &dialog, [&] { ++runs; });
        callsButton(entry, save);
        ScriptedPrompter prompts;
        // A dialog opened from the screen keeps its own fields.
        QDialog child(&dialog);
        auto* childDate = new MaskEdBox(MaskEdBox::dateMask(), &child);
        childDate->setText(u"31/02/2026"_s);
        for (MaskEdBox* wrong : {hidden, off, shownOnly})
            wrong->setText(wrong->isMoney() ? u"12,345"_s : u"31/02/2026"_s);

        const auto typeDay = [&](const QString& keys) {
            tabs->setTab(0);
            day->setFocus();
            day->selectAll();
            QTest::keyClick(day, Qt::Key_Delete);
            QTest::keyClicks(day, keys);
        };
        const QList<std::function<void()>> ways{
            [&] { save->click(); },
            [&] { entry->trigger(); },
            [&] { QTest::keyClick(&dialog, Qt::Key_G, Qt::ControlModifier); },
            [&] { QTest::mouseClick(save, Qt::LeftButton); },
        };
        for (int way = 0; way < ways.size(); ++way) {
            typeDay(u"310220"_s);
            prompts.clear();
            ways[way]();
            QCOMPARE(prompts.texts(), QStringList{badDateMessage(u"31/02/20"_s)});
            QCOMPARE(QApplication::focusWidget(), day);
            QCOMPARE(runs, 0);
        }

        // The amount on the tab not shown comes first in the order of Tab: its tab is shown.
        amount->setText(u"12,345"_s);
        typeDay(u"31022026"_s);
        prompts.clear();
        entry->trigger();
        QCOMPARE(prompts.texts(), QStringList{badMoneyMessage(u"12,345"_s)});
        QCOMPARE(tabs->tab(), 1);
        QCOMPARE(QApplication::focusWidget(), amount);
        QCOMPARE(runs, 0);

        amount->setText(u"1234,5"_s);
        day->clear();
        day->setTodayWhenEmpty();
        prompts.clear();
        entry->trigger();
        QVERIFY(prompts.texts().isEmpty());
        QCOMPARE(runs, 1);
        QCOMPARE(amount->text(), u"1.234,50"_s);
        QCOMPARE(day->date(), std::optional<QDate>(QDate::currentDate()));
        QVERIFY(settleFields(&dialog));
    }

    // The save dialog: a name typed without an extension takes the one of the type chosen,
    // since the extension decides how the file is written; a name with one keeps it.
    void saveDialogTakesTheTypesExtension() {
        QTemporaryDir dir;
        const QString types = u"Planilhas do Excel (*.xlsx);;Planilhas CSV (*.csv)"_s;
        auto answer = [&](const QString& typed, const QString& type) {
            rtx::test::onModal([=](QWidget* w) {
                auto* dialog = qobject_cast<QFileDialog*>(w);
                QVERIFY(dialog);
                dialog->selectNameFilter(type);
                dialog->selectFile(typed);
                static_cast<QDialog*>(dialog)->accept();
            });
            return chooseSaveFile(nullptr, u"Salvar"_s, dir.filePath(u"x.xlsx"_s), types);
        };
        QCOMPARE(answer(dir.filePath(u"dados"_s), u"Planilhas CSV (*.csv)"_s),
                 std::optional<QString>(dir.filePath(u"dados.csv"_s)));
        QCOMPARE(answer(dir.filePath(u"outro.csv"_s), u"Planilhas do Excel (*.xlsx)"_s),
                 std::optional<QString>(dir.filePath(u"outro.csv"_s)));
    }

    // Whatever a slot throws is shown and the screen goes on: the store's failure in the
    // engine's words, a standard exception with its words, anything else with the plain
    // message; a control missing from a screen is named.
    void guardedShowsEveryFailure() {
        ScriptedPrompter prompts;
        QWidget screen;
        screen.setObjectName(u"CAIXA"_s);
        bool ran = false;
        QVERIFY(guarded(&screen, [&] { ran = true; }));
        QVERIFY(ran && prompts.shown().isEmpty());
        QVERIFY(!guarded(nullptr, [] { throw rtx::StoreError(u"no such column: C99"_s); }));
        QCOMPARE(prompts.texts(ScriptedPrompter::Kind::Error),
                 QStringList{u"no such column: C99"_s});
        prompts.clear();
        QVERIFY(!guarded(&screen, [] { throw std::runtime_error("disco cheio"); }));
        QVERIFY(!guarded(&screen, [] { throw 42; }));
        QVERIFY(!guarded(&screen, [&] { namedControl<QAbstractButton>(&screen, u"Command16"_s); }));
        QCOMPARE(
            prompts.texts(ScriptedPrompter::Kind::Error),
            (QStringList{unexpectedFailureText("disco cheio"), unexpectedFailureText(nullptr),
                         unexpectedFailureText("o controle Command16 não existe na tela CAIXA")}));
        auto* button = new QPushButton(&screen);
        button->setObjectName(u"Command16"_s);
        QCOMPARE(namedControl<QAbstractButton>(&screen, u"Command16"_s), button);
    }
};

QTEST_MAIN(TestKit)
#include "tst_kit.moc"
