// The shared screen kit, driven through real widgets offscreen: Enter as Tab, focus
// colours, autocomplete, the money filter, masks and the date rule, actions that settle the
// fields first, lists, the hourglass and the dialog seam.

#include "kit/kit.h"
#include "screendriver.h"
#include "scriptedprompter.h"
#include "store/formats.h"

#include <QtTest>
#include <QtWidgets>

using namespace Qt::Literals::StringLiterals;
using namespace rtx::ui;
using rtx::test::ScriptedPrompter;

namespace {

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

// A small screen: two text fields, a combo box and a default button.
struct Screen {
    QDialog dialog;
    QLineEdit* a = new QLineEdit(&dialog);
    QComboBox* combo = new QComboBox(&dialog);
    QLineEdit* b = new QLineEdit(&dialog);
    QPushButton* ok = new QPushButton(u"OK"_s, &dialog);

    Screen() {
        combo->setEditable(true);
        combo->addItems({u"ANTONIO CARLOS"_s, u"ANA PAULA"_s, u"ANABELA"_s});
        combo->setEditText(QString());
        ok->setDefault(true);
        showWith(&dialog, {a, combo, b, ok});
    }
};

} // namespace

class TestKit : public QObject {
    Q_OBJECT

private slots:
    void enterFocusHourglassAndAutocomplete() {
        setHourglass();
        QCOMPARE(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
        Screen s;
        QSignalSpy okClicks(s.ok, &QPushButton::clicked);
        s.b->setFocus(); // a field taking the focus puts the pointer back
        QCOMPARE(QGuiApplication::overrideCursor(), nullptr);

        s.a->setText(u"RUA DAS FLORES"_s);
        s.a->setFocus(); // entering by program selects the whole text
        QCOMPARE(s.a->selectedText(), u"RUA DAS FLORES"_s);
        QCOMPARE(base(s.a), kYellow);
        QTest::keyClick(s.a, Qt::Key_Return);
        QCOMPARE(QApplication::focusWidget(), s.combo);
        QCOMPARE(base(s.a), kWhite);
        QTest::keyClick(s.combo, Qt::Key_Enter); // the keypad's Enter too
        QCOMPARE(QApplication::focusWidget(), s.b);
        QTest::keyClick(s.b, Qt::Key_Return);
        QCOMPARE(QApplication::focusWidget(), s.ok);
        QCOMPARE(okClicks.count(), 0);         // Enter in a field never reached the default button
        QTest::keyClick(s.ok, Qt::Key_Return); // on the button it clicks it, once
        QCOMPARE(okClicks.count(), 1);

        // Autocomplete narrows blind to case.
        QLineEdit* edit = s.combo->lineEdit();
        s.combo->setFocus();
        QTest::keyClicks(s.combo, u"an"_s);
        QCOMPARE(s.combo->currentText(), u"ANTONIO CARLOS"_s);
        // The search is built from the text before the selection: "ANa" finds ANA PAULA.
        QTest::keyClick(s.combo, 'a');
        QCOMPARE(s.combo->currentIndex(), 1);
        QCOMPARE(edit->selectedText(), u" PAULA"_s);
        // No item matches: the key is typed as usual, replacing the completed tail.
        QTest::keyClick(s.combo, 'x');
        QCOMPARE(s.combo->currentText(), u"ANAx"_s);
        // Enter after a completion moves on and adds nothing to the list.
        s.combo->setEditText(QString());
        QTest::keyClicks(s.combo, u"ana"_s);
        QTest::keyClick(s.combo, Qt::Key_Return);
        QCOMPARE(QApplication::focusWidget(), s.b);
        QCOMPARE(s.combo->count(), 3);
        QCOMPARE(s.combo->currentText(), u"ANA PAULA"_s);
    }

    // Masks: letters refused where digits stand, the text given without its literals, the
    // digits kept across a change of mask; a CNPJ with letters takes them in
    // capitals where the mask says 'A' while its check digits stay digits.
    void maskedFields() {
        QDialog dialog;
        auto* date = new MaskEdBox(MaskEdBox::dateMask(), &dialog);
        auto* cnpj = new MaskEdBox(u"AA.AAA.AAA/AAAA-##"_s, &dialog);
        showWith(&dialog, {date, cnpj});
        date->setFocus();
        QTest::keyClicks(date, u"25a12x20209"_s); // letters and the extra 9 refused
        QCOMPARE(date->text(), u"25/12/2020"_s);
        static_cast<QLineEdit*>(date)->setText(u"01022021"_s); // given without its literals
        QCOMPARE(date->shownText(), u"01/02/2021"_s);

        cnpj->setFocus();
        QTest::keyClicks(cnpj, u"12abc-345/01de35x9"_s);
        QCOMPARE(cnpj->text(), u"12.ABC.345/01DE-35"_s);
        cnpj->setText(u"12ABC34501DEX5"_s); // a letter where a check digit stands
        QCOMPARE(cnpj->text(), u"12.ABC.345/01DE-"_s);
        cnpj->setMask(u"########/####-##"_s); // a digit mask keeps the digits only
        QCOMPARE(cnpj->text(), u"1234501"_s);
    }

    // What a money field lets in, typed or pasted, the masked one and a plain field given
    // moneyField(): a key replaces the selection, a comma typed first stands for 0, leaving
    // formats, nothing above the largest amount goes in (said so), and a paste that is no
    // money is refused with its message. An amount that cannot be read when leaving is said
    // so, keeps its text and the focus, and is never taken as zero.
    void moneyFieldTakesOnlyMoney_data() {
        QTest::addColumn<bool>("masked");
        QTest::addColumn<QString>("start");
        QTest::addColumn<QString>("way"); // keys (\x7f Delete, \t leave), or ctrl+v
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QStringList>("said");
        const QStringList none;
        const QStringList tooMuch{rtx::tooMuchMoneyMessage()};
        const auto bad = [](const QString& t) { return QStringList{badMoneyMessage(t)}; };
        const auto row = [](const char* name, bool masked, const QString& start, const QString& way,
                            const QString& input, const QString& shown, const QStringList& said) {
            QTest::newRow(name) << masked << start << way << input << shown << said;
        };
        row("plain: junk keys", false, u""_s, u"keys"_s, u"-12a.5,3 $+."_s, u"12,53"_s, none);
        row("plain: comma first", false, u"12,5"_s, u"keys"_s, u",5"_s, u"0,5"_s, none);
        row("plain: negative pasted", false, u"0,5"_s, u"ctrl+v"_s, u"-5,00"_s, u"0,5"_s,
            bad(u"-5,00"_s));
        row("points kept apart", true, u"0,00"_s, u"keys"_s, u"\x7f-1234.5.6x\t"_s, u"1.234,56"_s,
            none);
        row("emptied is zero", true, u"5,00"_s, u"keys"_s, u"\x7f\t"_s, u"0,00"_s, none);
        row("fourth decimal", true, u"0,00"_s, u"keys"_s, u"12,3456\t"_s, u"12,345"_s,
            bad(u"12,345"_s));
        row("one digit too many", true, u"0,00"_s, u"keys"_s, u"999999999"_s, u"99999999"_s,
            tooMuch);
        row("too large pasted", true, u"0,00"_s, u"ctrl+v"_s, u"123.456.789,00"_s, u"0,00"_s,
            tooMuch);
        row("amount pasted", true, u"0,00"_s, u"ctrl+v"_s, u" 1.234,56\n"_s, u"1.234,56"_s, none);
    }

    void moneyFieldTakesOnlyMoney() {
        QFETCH(bool, masked);
        QFETCH(QString, start);
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
        money->selectAll();
        QGuiApplication::clipboard()->setText(input);
        if (way == u"keys"_s) {
            for (QChar c : input)
                if (c == u'\x7f')
                    QTest::keyClick(money, Qt::Key_Delete);
                else if (c == u'\t')
                    QTest::keyClick(money, Qt::Key_Tab);
                else
                    QTest::keyClicks(money, QString(c));
        } else {
            QTest::keyClick(money, Qt::Key_V, Qt::ControlModifier);
        }
        QCOMPARE(money->text(), shown);
        QCOMPARE(prompts.texts(), said);
        if (input.endsWith(u'\t')) { // refused on leaving: the focus stays, no amount
            QCOMPARE(QApplication::focusWidget(), said.isEmpty() ? other : money);
            if (!said.isEmpty()) QVERIFY(!mask->cents());
        }
    }

    // A list gives the row chosen by double click or Enter, and the key of its last column.
    void flexGridGivesTheRow() {
        MSFlexGrid grid;
        grid.setHeaders({u"Data"_s, u"Cliente"_s, u"cd"_s});
        grid.addItem(u"01/02/2021\tJOSÉ\t0000012"_s);
        grid.addItem(u"02/02/2021\tMARIA\t0000013\textra"_s);
        QCOMPARE(grid.key(2), u"0000013"_s);
        grid.show();
        QVERIFY(QTest::qWaitForWindowExposed(&grid));
        QSignalSpy chosen(&grid, &MSFlexGrid::rowDoubleClicked);
        const QRect cell = grid.visualItemRect(grid.item(1, 1));
        QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, cell.center());
        QTest::mouseDClick(grid.viewport(), Qt::LeftButton, {}, cell.center());
        grid.setFocus();
        grid.setRow(1);
        QTest::keyClick(&grid, Qt::Key_Return);
        QCOMPARE(chosen.count(), 2);
        QCOMPARE(chosen.at(0).at(0).toInt(), 2);
        QCOMPARE(chosen.at(1).at(0).toInt(), 1);
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
        typeAndLeave(u"29022025"_s);
        QCOMPARE(prompts.texts(), QStringList{badDateMessage(u"29/02/2025"_s)});
        QCOMPARE(QApplication::focusWidget(), date);
        QCOMPARE(date->shownText(), u"29/02/2025"_s);
        QVERIFY(!date->settledDate()); // an action asks again, and is refused again
        QCOMPARE(prompts.count(ScriptedPrompter::Kind::Notice), 2);
        prompts.clear();
        typeAndLeave(u"29022028"_s);
        QCOMPARE(QApplication::focusWidget(), other);
        QCOMPARE(date->date(), std::optional<QDate>(QDate(2028, 2, 29)));
        typeAndLeave(QString()); // no date for empty: it stays empty, and reads as none
        QCOMPARE(date->settledDate(), std::optional<QDate>(QDate()));
        date->setEmptyDate([] { return QDate(2030, 1, 2); });
        typeAndLeave(QString());
        QCOMPARE(date->shownText(), u"02/01/2030"_s);
        QVERIFY(prompts.texts().isEmpty());
    }

    // An action connected by the kit settles the screen's money and date fields in the order
    // of Tab before it runs, from its shortcut as from its button (none of which leaves the
    // field): the first field that cannot be read is said so once, gets the focus on its
    // tab, and the action does not run. Fields hidden, disabled, read-only or of another
    // window are not the screen's to settle.
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
        auto* day = new MaskEdBox(MaskEdBox::dateMask(), first);
        auto* amount = new MaskEdBox(MaskEdBox::moneyMask(), second);
        auto* hidden = new MaskEdBox(MaskEdBox::moneyMask(), first);
        auto* off = new MaskEdBox(MaskEdBox::dateMask(), first);
        auto* shownOnly = new MaskEdBox(MaskEdBox::dateMask(), first);
        for (QWidget* page : {first, second})
            new QVBoxLayout(page);
        for (QWidget* w : std::initializer_list<QWidget*>{day, hidden, off, shownOnly})
            first->layout()->addWidget(w);
        second->layout()->addWidget(amount);
        auto* save = new QPushButton(u"Grava"_s, &dialog);
        showWith(&dialog, {bar, tabs, save});
        hidden->hide();
        off->setEnabled(false);
        shownOnly->setReadOnly(true);
        QWidget::setTabOrder(amount, day); // Tab goes to the amount before the day
        int runs = 0;
        onAction(save, &dialog, [&] { ++runs; });
        callsButton(entry, save);
        ScriptedPrompter prompts;
        QDialog child(&dialog); // a dialog opened from the screen keeps its own fields
        (new MaskEdBox(MaskEdBox::dateMask(), &child))->setText(u"31/02/2026"_s);
        for (MaskEdBox* wrong : {hidden, off, shownOnly})
            wrong->setText(wrong->isMoney() ? u"12,345"_s : u"31/02/2026"_s);

        tabs->setTab(0);
        day->setFocus();
        QTest::keyClicks(day, u"310220"_s);
        QTest::keyClick(&dialog, Qt::Key_G, Qt::ControlModifier);
        QTest::mouseClick(save, Qt::LeftButton);
        QCOMPARE(prompts.texts(), QStringList(2, badDateMessage(u"31/02/20"_s)));
        QCOMPARE(QApplication::focusWidget(), day);
        QCOMPARE(runs, 0);
        // The amount on the tab not shown comes first in the order of Tab: its tab is shown.
        amount->setText(u"12,345"_s);
        day->setText(u"28/02/2026"_s);
        prompts.clear();
        entry->trigger();
        QCOMPARE(prompts.texts(), QStringList{badMoneyMessage(u"12,345"_s)});
        QCOMPARE(tabs->tab(), 1);
        QCOMPARE(QApplication::focusWidget(), amount);
        amount->setText(u"1234,5"_s);
        prompts.clear();
        entry->trigger();
        QVERIFY(prompts.texts().isEmpty());
        QCOMPARE(runs, 1);
        QCOMPARE(amount->text(), u"1.234,50"_s);
    }

    // The save dialog: a name typed without an extension takes the one of the type chosen,
    // since the extension decides how the file is written.
    void saveDialogAndFailures() {
        QTemporaryDir dir;
        rtx::test::onModal([&](QWidget* w) {
            auto* dialog = qobject_cast<QFileDialog*>(w);
            QVERIFY(dialog);
            dialog->selectNameFilter(u"Planilhas CSV (*.csv)"_s);
            dialog->selectFile(dir.filePath(u"dados"_s));
            static_cast<QDialog*>(dialog)->accept();
        });
        QCOMPARE(chooseSaveFile(nullptr, u"Salvar"_s, dir.filePath(u"x.xlsx"_s),
                                u"Planilhas do Excel (*.xlsx);;Planilhas CSV (*.csv)"_s),
                 std::optional<QString>(dir.filePath(u"dados.csv"_s)));

        // Whatever a slot throws is shown and the screen goes on: the store's failure in the
        // engine's words, another with its words; a control missing from a screen is named.
        ScriptedPrompter prompts;
        QWidget screen;
        screen.setObjectName(u"CAIXA"_s);
        QVERIFY(!guarded(nullptr, [] { throw rtx::StoreError(u"no such column: C99"_s); }));
        QVERIFY(!guarded(&screen, [] { throw std::runtime_error("disco cheio"); }));
        QVERIFY(!guarded(&screen, [&] { namedControl<QAbstractButton>(&screen, u"Command16"_s); }));
        QCOMPARE(
            prompts.texts(ScriptedPrompter::Kind::Error),
            (QStringList{u"no such column: C99"_s, unexpectedFailureText("disco cheio"),
                         unexpectedFailureText("o controle Command16 não existe na tela CAIXA")}));
    }
};

QTEST_MAIN(TestKit)
#include "tst_kit.moc"
