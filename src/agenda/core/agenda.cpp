#include "agenda/core/agenda.h"

#include "store/formats.h"

namespace rtx::agenda {

namespace {

const QString& table() {
    return rtx::table(entriesTable).name;
}

QList<Entry> entriesOf(Recordset rs) {
    QList<Entry> out;
    out.reserve(rs.recordCount());
    for (; !rs.eof(); rs.moveNext())
        out << readRecord(rs, entryFields());
    return out;
}

// The hour sorts as typed, in plain text order on both engines, an empty hour first.
QString hourKey(const Store& store) {
    return store.engine() == Engine::PostgreSQL
               ? QStringLiteral("COALESCE(%1, '') COLLATE \"C\"").arg(col::hour)
               : QStringLiteral("COALESCE(%1, '')").arg(col::hour);
}

QString hourOrder(const Store& store) {
    return QStringLiteral("%1, %2").arg(hourKey(store), col::code);
}

} // namespace

const QList<Field<Entry>>& entryFields() {
    static const QList<Field<Entry>> fields{field<Entry>(col::code, &Entry::code),
                                            field<Entry>(col::date, &Entry::date),
                                            field<Entry>(col::hour, &Entry::hour),
                                            field<Entry>(col::group, &Entry::group),
                                            field<Entry>(col::position, &Entry::position),
                                            field<Entry>(col::event, &Entry::event),
                                            field<Entry>(col::comment, &Entry::comment),
                                            field<Entry>(versionColumn(), &Entry::version)};
    return fields;
}

QString weekdayName(const QDate& date) {
    static const QStringList names{QStringLiteral("Domingo"), QStringLiteral("Segunda"),
                                   QStringLiteral("Terça"),   QStringLiteral("Quarta"),
                                   QStringLiteral("Quinta"),  QStringLiteral("Sexta"),
                                   QStringLiteral("Sábado")};
    return date.isValid() ? names.at(date.dayOfWeek() % 7) : QString();
}

QString dayCaption(const QDate& date) {
    return weekdayName(date) + u'-' + date.toString(QStringLiteral("dd/MM"));
}

qint64 entryCount(Store& store) {
    return store.count(entriesTable);
}

std::optional<Entry> loadEntry(Store& store, const QString& code) {
    return loadRecord(store, entriesTable, col::code, code, entryFields());
}

QList<Entry> dayEntries(Store& store, const QDate& day) {
    return rangeEntries(store, day, day, Order::Hour);
}

QList<Entry> rangeEntries(Store& store, const QDate& from, const QDate& to, Order order) {
    const QString by = order == Order::Hour
                           ? hourOrder(store)
                           : QStringLiteral("%1, %2, %3").arg(col::date, hourKey(store), col::code);
    return entriesOf(store.open(QStringLiteral("SELECT * FROM %1 WHERE %2 BETWEEN ? AND ? "
                                               "ORDER BY %3")
                                    .arg(table(), col::date, by),
                                {from, to}));
}

QList<Entry> allEntries(Store& store) {
    return entriesOf(
        store.open(QStringLiteral("SELECT * FROM %1 ORDER BY %2").arg(table(), hourOrder(store))));
}

std::optional<Problem> checkEntry(const Entry& entry) {
    if (entry.event.trimmed().isEmpty())
        return Problem{col::event, QStringLiteral("Evento não localizado.")};
    if (entry.position.trimmed().isEmpty())
        return Problem{col::position, QStringLiteral("Posição não localizada.")};
    return std::nullopt;
}

QString saveEntry(Store& store, const Entry& entry) {
    UnitOfWork unit(store);
    Entry e = entry;
    if (e.code.isEmpty()) e.code = store.nextCode(entriesTable);
    for (QString* word : {&e.hour, &e.group, &e.position, &e.event})
        *word = word->trimmed();
    saveRecord(store, entriesTable, col::code, e.code, e, entryFields());
    unit.commit();
    return e.code;
}

void removeEntry(Store& store, const QString& code) {
    UnitOfWork unit(store);
    store.execute(QStringLiteral("DELETE FROM %1 WHERE %2 = ?").arg(table(), col::code), {code});
    unit.commit();
}

QString walkCode(Store& store, Walk walk, const QString& from) {
    switch (walk) {
    case Walk::First:
        return store.firstCode(entriesTable);
    case Walk::Last:
        return store.lastCode(entriesTable);
    case Walk::Previous:
        return from.isEmpty() ? QString() : store.previousCode(entriesTable, from);
    case Walk::Next:
        return from.isEmpty() ? QString() : store.nextCodeAfter(entriesTable, from);
    }
    return {};
}

std::optional<QString> noticeFor(Store& store, const QString& dateText) {
    Recordset rs =
        store.open(QStringLiteral("SELECT %1 FROM %2 WHERE %3 = ?")
                       .arg(noticecol::text, rtx::table(noticesTable).name, noticecol::date),
                   {dateText});
    if (rs.eof()) return std::nullopt;
    return rs.text(noticecol::text);
}

void addNotice(Store& store, const QString& dateText, const QString& text) {
    UnitOfWork unit(store);
    store.insert(noticesTable, {{noticecol::date, dateText}, {noticecol::text, text}});
    unit.commit();
}

QString wordTable(WordList list) {
    switch (list) {
    case WordList::Positions:
        return QStringLiteral("agenda_posicoes"); // AGE1.mdb
    case WordList::Groups:
        return QStringLiteral("agenda_grupos"); // AGE2.mdb
    case WordList::Events:
        return QStringLiteral("agenda_eventos"); // AGE3.mdb
    }
    return {};
}

namespace {
const QString wordColumn = QStringLiteral("AGE");
}

QStringList words(Store& store, WordList list) {
    const QString t = wordTable(list);
    QStringList out;
    for (Recordset rs =
             store.open(QStringLiteral("SELECT %1 FROM %2 ORDER BY %3")
                            .arg(wordColumn, rtx::table(t).name, store.sortKey(t, wordColumn)));
         !rs.eof(); rs.moveNext())
        out << rs.text(wordColumn);
    return out;
}

bool hasWord(Store& store, WordList list, const QString& word) {
    const QString t = wordTable(list);
    return store
               .scalar(QStringLiteral("SELECT COUNT(*) FROM %1 WHERE %2")
                           .arg(rtx::table(t).name, store.sameText(t, wordColumn)),
                       {word})
               .toLongLong() > 0;
}

void addWord(Store& store, WordList list, const QString& word) {
    UnitOfWork unit(store);
    store.insert(wordTable(list), {{wordColumn, word}});
    unit.commit();
}

void removeWord(Store& store, WordList list, const QString& word) {
    const QString t = wordTable(list);
    UnitOfWork unit(store);
    store.execute(QStringLiteral("DELETE FROM %1 WHERE %2")
                      .arg(rtx::table(t).name, store.sameText(t, wordColumn)),
                  {word});
    unit.commit();
}

QString outlookHeading(const QDate& day, int count) {
    return dayCaption(day) + QStringLiteral(" - Total - ") +
           QStringLiteral("%1").arg(count, 3, 10, QLatin1Char('0')) + QString(65, u' ');
}

Outlook outlook(Store& store, const QDate& shown, const QDate& today) {
    const auto byHour = [](const QList<Entry>& entries) {
        QStringList rows;
        for (const Entry& e : entries)
            rows << QStringLiteral("=> %1 - %2").arg(e.hour, e.event);
        return rows;
    };
    Outlook o;
    o.nextDay.rows = byHour(dayEntries(store, shown.addDays(1)));
    o.dayAfter.rows = byHour(dayEntries(store, shown.addDays(2)));
    for (const Entry& e : rangeEntries(store, shown.addDays(3), shown.addDays(30), Order::Date))
        o.weeks.rows << QStringLiteral("=> %1 - %2").arg(formatDate(e.date), e.event);
    o.nextDay.heading = outlookHeading(today.addDays(1), int(o.nextDay.rows.size()));
    o.dayAfter.heading = outlookHeading(today.addDays(2), int(o.dayAfter.rows.size()));
    o.weeks.heading = outlookHeading(today.addDays(3), int(o.weeks.rows.size()));
    return o;
}

QList<FoundEntry> searchRange(Store& store, const QDate& from, const QDate& to) {
    QList<FoundEntry> found;
    for (const Entry& e : rangeEntries(store, from, to, Order::Hour))
        found << FoundEntry{
            QStringLiteral("=> %1 - %2 - %3").arg(formatDate(e.date), e.hour, e.event), e.group};
    return found;
}

QStringList narrowToGroup(const QList<FoundEntry>& found, const QString& group) {
    QStringList rows;
    for (const FoundEntry& f : found)
        if (group.isEmpty() || f.group.compare(group, Qt::CaseInsensitive) == 0) rows << f.text;
    return rows;
}

void fillPrintRows(Store& store, const QDate& from, const QDate& to, const QString& group,
                   const QStringList& rows) {
    UnitOfWork unit(store);
    store.execute(QStringLiteral("DELETE FROM %1").arg(rtx::table(printTable).name));
    const QString groupLine = group.isEmpty() ? QString() : QStringLiteral("GRUPO:  ") + group;
    for (const QString& r : rows)
        store.insert(printTable, {{QStringLiteral("Codigo"), QStringLiteral("1")},
                                  {QStringLiteral("DI"), formatDate(from)},
                                  {QStringLiteral("DF"), formatDate(to)},
                                  {QStringLiteral("GRUPO"), groupLine},
                                  {QStringLiteral("A1"), r}});
    unit.commit();
}

} // namespace rtx::agenda
