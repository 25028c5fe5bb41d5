#pragma once
// Driving a register screen in a test: an installation, the scripted answerer and the screen
// up and active, fields typed into and left as the keyboard does, buttons clicked by name,
// what the screen shows and what the store holds read back as lists of texts.
//
//     Desk<cliente> d(true); // demo office
//     RTX_OPEN_DESK(d);
//     typeAndLeave(d.s(), u"C5"_s, u"ACME"_s);
//     click(d.s(), u"Command16"_s);

#include "keyboard.h"
#include "kit/kit.h"
#include "screendriver.h"
#include "session/core/current.h"
#include "testinstall.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTest>
#include <memory>

namespace rtx::test {

inline bool showActive(QWidget* screen) {
    screen->show();
    QApplication::setActiveWindow(screen);
    return QTest::qWaitForWindowActive(screen);
}

// The text of a control as the screen shows it (masked fields with their literals).
inline QString shown(const QWidget* screen, const QString& name) {
    QWidget* w = control(screen, name);
    if (auto* m = qobject_cast<rtx::ui::MaskEdBox*>(w)) return m->shownText();
    if (auto* e = qobject_cast<QLineEdit*>(w)) return e->text();
    if (auto* c = qobject_cast<QComboBox*>(w)) return c->currentText();
    if (auto* p = qobject_cast<QPlainTextEdit*>(w)) return p->toPlainText();
    if (auto* l = qobject_cast<QLabel*>(w)) return l->text();
    return {};
}

inline QStringList shownAll(const QWidget* screen, const QStringList& names) {
    QStringList out;
    for (const QString& name : names)
        out << shown(screen, name);
    return out;
}

// Goes into a field as the keyboard does (on its tab, its whole text selected) and types
// over it.
inline void typeInto(QWidget* screen, const QString& name, const QString& text) {
    auto* tabs = screen->findChild<rtx::ui::SSTab*>(QStringLiteral("SSTab1"));
    QWidget* f = control(screen, name);
    for (int i = 0; tabs && i < tabs->count(); ++i)
        if (tabs->widget(i)->isAncestorOf(f)) tabs->setTab(i);
    f->setFocus(Qt::TabFocusReason);
    QTest::keyClick(f, Qt::Key_A, Qt::ControlModifier);
    if (text.isEmpty())
        QTest::keyClick(f, Qt::Key_Delete);
    else
        typeText(f, text);
}

// Enter: leaves the field for the next one.
inline void leave(QWidget* screen, const QString& name) {
    QTest::keyClick(control(screen, name), Qt::Key_Return);
}

inline void typeAndLeave(QWidget* screen, const QString& name, const QString& text) {
    typeInto(screen, name, text);
    leave(screen, name);
}

inline void click(QWidget* screen, const QString& button) {
    auto* b = screen->findChild<QAbstractButton*>(button);
    if (!b) qFatal("no button %s", qPrintable(button));
    QTest::mouseClick(b, Qt::LeftButton);
}

inline qint64 countRows(const QString& sql, const QVariantList& params = {}) {
    return Store::current().scalar(sql, params).toLongLong();
}

// Columns of the first row a statement gives, as the store reads them back (dates
// dd/mm/yyyy, money 1.234,56, null as empty); "<no row>" when there is none.
inline QStringList rowTexts(const QString& sql, const QVariantList& params,
                            const QStringList& columns) {
    Recordset rs = Store::current().open(sql, params);
    QStringList out;
    for (const QString& c : columns)
        out << (rs.eof() ? QStringLiteral("<no row>") : rs.text(c));
    return out;
}

// Makes a table refuse every new row, as a full disk or a lost server would.
inline void refuseInserts(Store& store, const QString& table, bool refuse) {
    const bool pg = store.engine() == Engine::PostgreSQL;
    if (!refuse) {
        store.execute(pg ? QStringLiteral("DROP TRIGGER recusa ON %1").arg(table)
                         : QStringLiteral("DROP TRIGGER recusa"));
        return;
    }
    if (pg)
        store.execute(QStringLiteral(
            "CREATE OR REPLACE FUNCTION recusa() RETURNS trigger LANGUAGE plpgsql AS "
            "$$ BEGIN RAISE EXCEPTION 'disco cheio (teste)'; END $$"));
    store.execute((pg ? QStringLiteral("CREATE TRIGGER recusa BEFORE INSERT ON %1 "
                                       "FOR EACH ROW EXECUTE FUNCTION recusa()")
                      : QStringLiteral("CREATE TRIGGER recusa BEFORE INSERT ON %1 BEGIN "
                                       "SELECT RAISE(ABORT, 'disco cheio (teste)'); END"))
                      .arg(table));
}

// Makes the cash book refuse the credit of one document, as a full disk would halfway
// through; refuseInserts(store, "caixa", false) takes the refusal away.
inline void refuseCredit(Store& store, const QString& document) {
    if (store.engine() == Engine::PostgreSQL) {
        store.execute(QStringLiteral(
                          "CREATE OR REPLACE FUNCTION recusa() RETURNS trigger LANGUAGE plpgsql AS "
                          "$$ BEGIN IF NEW.a3 = '%1' THEN RAISE EXCEPTION 'disco cheio (teste)'; "
                          "END IF; RETURN NEW; END $$")
                          .arg(document));
        store.execute(QStringLiteral("CREATE TRIGGER recusa BEFORE INSERT ON caixa FOR EACH ROW "
                                     "EXECUTE FUNCTION recusa()"));
    } else {
        store.execute(QStringLiteral("CREATE TRIGGER recusa BEFORE INSERT ON caixa WHEN NEW.A3 = "
                                     "'%1' BEGIN SELECT RAISE(ABORT, 'disco cheio (teste)'); END")
                          .arg(document));
    }
}

// An installation (seeded, with the demo office or not), the seam's answerer and one
// screen, opened by RTX_OPEN_DESK.
template <class Screen> struct Desk {
    TestInstallation inst;
    ScriptedPrompter prompts;
    std::unique_ptr<Screen> screen;

    explicit Desk(bool demo) : inst(true, demo) {}
    bool open() {
        rtx::session::setInstallation(inst.installation());
        screen = std::make_unique<Screen>();
        return showActive(screen.get());
    }
    Screen* s() const { return screen.get(); }
    qint64 count(const QString& table) { return inst.store().count(table); }
};

#define RTX_OPEN_DESK(desk)                                                                        \
    do {                                                                                           \
        RTX_REQUIRE_INSTALL((desk).inst);                                                          \
        QVERIFY((desk).open());                                                                    \
    } while (0)

} // namespace rtx::test
