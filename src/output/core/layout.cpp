#include "layout.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>

namespace rtx::output {

LayoutError::LayoutError(QString file, int line, QString problem)
    : std::runtime_error(problem.toStdString()), file_(std::move(file)), line_(line),
      problem_(std::move(problem)) {}

QString LayoutError::text() const {
    if (line_ <= 0) return problem_;
    return QStringLiteral("O arquivo de relatório %1 tem um erro na linha %2: %3")
        .arg(file_)
        .arg(line_)
        .arg(problem_);
}

namespace {

QString plain(const QString& word) {
    return keyword(word);
}

// Width and height of a paper upright, in millimetres.
std::pair<double, double> paperSize(PaperSize paper) {
    switch (paper) {
    case PaperSize::A5:
        return {148, 210};
    case PaperSize::Letter:
        return {215.9, 279.4};
    case PaperSize::Legal:
        return {215.9, 355.6};
    case PaperSize::A4:
        break;
    }
    return {210, 297};
}

} // namespace

double Layout::pageWidth() const {
    const auto [w, h] = paperSize(paper);
    return landscape ? h : w;
}

double Layout::pageHeight() const {
    const auto [w, h] = paperSize(paper);
    return landscape ? w : h;
}

namespace {

struct Token {
    QString text;
    bool quoted = false;
};

class Parser {
public:
    Parser(QString file) : file_(std::move(file)) { layout_.file = file_; }

    Layout run(const QString& text) {
        const QStringList lines = text.split(u'\n');
        for (int i = 0; i < lines.size(); ++i) {
            line_ = i + 1;
            QString l = lines[i];
            if (l.endsWith(u'\r')) l.chop(1);
            const QList<Token> tokens = tokenize(l);
            if (tokens.isEmpty()) continue;
            if (!tokens.first().quoted && tokens.first().text.startsWith(u'['))
                section(tokens);
            else
                statement(tokens);
        }
        finish();
        return layout_;
    }

private:
    enum class Section { None, Start, Header, Columns, Group, GroupEnd, Form, Finish, Footer };

    QString file_;
    Layout layout_;
    int line_ = 0;
    Section section_ = Section::None;
    int totalLine_ = 0;

    [[noreturn]] void fail(const QString& problem) const {
        throw LayoutError(file_, line_, problem);
    }

    QList<Token> tokenize(const QString& l) const {
        QList<Token> out;
        qsizetype i = 0;
        while (i < l.size()) {
            if (l[i].isSpace()) {
                ++i;
                continue;
            }
            if (l[i] == u'#') break; // a comment to the end of the line
            if (l[i] == u'"') {
                QString text;
                ++i;
                bool closed = false;
                while (i < l.size()) {
                    if (l[i] == u'"') {
                        if (i + 1 < l.size() && l[i + 1] == u'"') {
                            text += u'"';
                            i += 2;
                            continue;
                        }
                        closed = true;
                        ++i;
                        break;
                    }
                    text += l[i++];
                }
                if (!closed) fail(QStringLiteral("falta fechar as aspas"));
                out.append({text, true});
                continue;
            }
            qsizetype j = i;
            if (l[i] == u'[') {
                // A section name runs to its closing bracket, blanks included.
                const qsizetype end = l.indexOf(u']', i);
                if (end < 0) fail(QStringLiteral("falta fechar o colchete da seção"));
                j = end + 1;
            } else {
                while (j < l.size() && !l[j].isSpace() && l[j] != u'"')
                    ++j;
            }
            out.append({l.mid(i, j - i), false});
            i = j;
        }
        return out;
    }

    Band* currentBand() {
        switch (section_) {
        case Section::Start:
            return &layout_.start;
        case Section::Header:
            return &layout_.header;
        case Section::Group:
            return &layout_.groupHeader;
        case Section::GroupEnd:
            return &layout_.groupFooter;
        case Section::Form:
            return &layout_.form;
        case Section::Finish:
            return &layout_.finish;
        case Section::Footer:
            return &layout_.footer;
        case Section::None:
        case Section::Columns:
            break;
        }
        return nullptr;
    }

    void section(const QList<Token>& tokens) {
        if (tokens.size() > 1) fail(QStringLiteral("texto depois do nome da seção"));
        QString name = tokens.first().text;
        name = name.mid(1, name.size() - 2).simplified();
        const QString key = plain(name);
        if (key == QStringLiteral("inicio")) {
            section_ = Section::Start;
        } else if (key == QStringLiteral("cabecalho")) {
            section_ = Section::Header;
        } else if (key == QStringLiteral("colunas")) {
            section_ = Section::Columns;
        } else if (key.startsWith(QStringLiteral("grupo"))) {
            const QString field = name.mid(5).trimmed();
            if (field.isEmpty() || field.contains(u' '))
                fail(QStringLiteral("diga a coluna do grupo: [grupo a18]"));
            layout_.groupField = field;
            section_ = Section::Group;
        } else if (key == QStringLiteral("fim do grupo")) {
            section_ = Section::GroupEnd;
        } else if (key == QStringLiteral("ficha")) {
            section_ = Section::Form;
        } else if (key == QStringLiteral("fim")) {
            section_ = Section::Finish;
        } else if (key == QStringLiteral("rodape")) {
            section_ = Section::Footer;
        } else {
            fail(QStringLiteral("seção desconhecida [%1] (use [início], [cabeçalho], [colunas], "
                                "[grupo COLUNA], [fim do grupo], [ficha], [fim] ou [rodapé])")
                     .arg(name));
        }
    }

    double number(const Token& t, const char* what) const {
        QString s = t.text;
        s.replace(u',', u'.');
        bool ok = false;
        const double v = s.toDouble(&ok);
        if (t.quoted || !ok || v < 0)
            fail(QStringLiteral("%1 deve ser um número, não \"%2\"")
                     .arg(QString::fromUtf8(what), t.text));
        return v;
    }

    Template templ(const Token& t) const {
        Template out;
        QString problem;
        if (!Template::parse(t.text, out, problem)) fail(problem);
        return out;
    }

    void need(const QList<Token>& tokens, int count, const QString& usage) const {
        if (tokens.size() < count) fail(QStringLiteral("incompleto; escreva %1").arg(usage));
    }

    void statement(const QList<Token>& tokens) {
        if (tokens.first().quoted) fail(QStringLiteral("a linha deve começar por uma palavra"));
        const QString word = plain(tokens.first().text);
        if (section_ == Section::None) {
            setting(word, tokens);
            return;
        }
        if (section_ == Section::Columns) {
            columnsLine(word, tokens);
            return;
        }
        if (section_ == Section::Form) {
            if (word == QStringLiteral("copias")) {
                need(tokens, 2, QStringLiteral("cópias 2"));
                layout_.copies = std::max(1, int(number(tokens[1], "O número de cópias")));
                return;
            }
            if (word == QStringLiteral("nova") && tokens.size() == 2 &&
                plain(tokens[1].text) == QStringLiteral("pagina")) {
                layout_.pagePerRow = true;
                return;
            }
        }
        currentBand()->elements.append(element(word, tokens));
    }

    void setting(const QString& word, const QList<Token>& tokens) {
        if (word == QStringLiteral("titulo")) {
            need(tokens, 2, QStringLiteral("título \"Nome do relatório\""));
            layout_.title = tokens[1].text;
        } else if (word == QStringLiteral("pagina")) {
            need(tokens, 2, QStringLiteral("página A4 retrato"));
            for (int i = 1; i < tokens.size(); ++i) {
                const QString w = plain(tokens[i].text);
                if (w == QStringLiteral("a4"))
                    layout_.paper = PaperSize::A4;
                else if (w == QStringLiteral("a5"))
                    layout_.paper = PaperSize::A5;
                else if (w == QStringLiteral("carta"))
                    layout_.paper = PaperSize::Letter;
                else if (w == QStringLiteral("oficio"))
                    layout_.paper = PaperSize::Legal;
                else if (w == QStringLiteral("retrato"))
                    layout_.landscape = false;
                else if (w == QStringLiteral("paisagem"))
                    layout_.landscape = true;
                else
                    fail(QStringLiteral("página \"%1\" desconhecida (use A4, A5, carta ou ofício, "
                                        "retrato ou paisagem)")
                             .arg(tokens[i].text));
            }
        } else if (word == QStringLiteral("margens")) {
            QList<double> m;
            for (int i = 1; i < tokens.size(); ++i)
                m << number(tokens[i], "A margem");
            // As on a printed page: one for all sides, two for top and bottom then the
            // sides, four from the top clockwise.
            if (m.size() == 1) m = {m[0], m[0], m[0], m[0]};
            if (m.size() == 2) m = {m[0], m[1], m[0], m[1]};
            if (m.size() == 4) {
                layout_.top = m[0];
                layout_.right = m[1];
                layout_.bottom = m[2];
                layout_.left = m[3];
            } else {
                fail(QStringLiteral("margens leva 1, 2 ou 4 números em milímetros (em cima, à "
                                    "direita, embaixo, à esquerda)"));
            }
        } else if (word == QStringLiteral("letra")) {
            need(tokens, 2, QStringLiteral("letra 9"));
            layout_.bodySize = number(tokens[1], "O tamanho da letra");
            if (layout_.bodySize < 4 || layout_.bodySize > 40)
                fail(QStringLiteral("tamanho de letra fora do razoável (4 a 40 pontos)"));
        } else if (word == QStringLiteral("fonte")) {
            need(tokens, 2, QStringLiteral("fonte \"DejaVu Sans\""));
            layout_.font = tokens[1].text;
        } else if (word == QStringLiteral("ordem")) {
            need(tokens, 2, QStringLiteral("ordem a2 CODIGO"));
            for (int i = 1; i < tokens.size(); ++i)
                layout_.order << tokens[i].text;
        } else {
            fail(QStringLiteral("\"%1\" desconhecido antes da primeira seção (use título, página, "
                                "margens, letra, fonte ou ordem)")
                     .arg(tokens.first().text));
        }
    }

    // Options shared by texts, boxes and totals. Gives false for a word that is none.
    bool option(const Token& t, Element& e) const {
        if (t.quoted) return false;
        const QString w = plain(t.text);
        if (w == QStringLiteral("esquerda"))
            e.align = Align::Left;
        else if (w == QStringLiteral("centro"))
            e.align = Align::Centre;
        else if (w == QStringLiteral("direita"))
            e.align = Align::Right;
        else if (w == QStringLiteral("negrito"))
            e.style.bold = true;
        else if (w == QStringLiteral("italico"))
            e.style.italic = true;
        else if (w == QStringLiteral("omitir-vazio"))
            e.omitEmpty = true;
        else if (w == QStringLiteral("caixa"))
            e.framed = true;
        else if (w == QStringLiteral("fundo"))
            e.shaded = true;
        else if (w.startsWith(QStringLiteral("tamanho=")))
            e.style.size = number({w.mid(8), false}, "O tamanho");
        else if (w == QStringLiteral("crescer"))
            e.grow = true;
        else if (w.startsWith(QStringLiteral("linhas=")))
            e.lines = std::max(1, int(number({w.mid(7), false}, "O número de linhas")));
        else
            return false;
        return true;
    }

    Element element(const QString& word, const QList<Token>& tokens) {
        Element e;
        e.sourceLine = line_;
        int i = 1;
        if (word == QStringLiteral("texto")) {
            e.kind = Element::Kind::Text;
            while (i < tokens.size() && tokens[i].quoted && e.texts.size() < 3)
                e.texts << templ(tokens[i++]);
            if (e.texts.isEmpty())
                fail(QStringLiteral("texto sem o texto entre aspas: texto \"Relatório\""));
        } else if (word == QStringLiteral("regua")) {
            e.kind = Element::Kind::Rule;
            e.amount = 0.5;
            if (i < tokens.size()) {
                const QString w = plain(tokens[i].text);
                if (w == QStringLiteral("grossa"))
                    e.amount = 1.5;
                else if (w == QStringLiteral("fina"))
                    e.amount = 0.25;
                else
                    e.amount = number(tokens[i], "A espessura da régua");
                ++i;
            }
        } else if (word == QStringLiteral("espaco")) {
            need(tokens, 2, QStringLiteral("espaço 3 (milímetros)"));
            e.kind = Element::Kind::Space;
            e.amount = number(tokens[i++], "O espaço");
        } else if (word == QStringLiteral("campo")) {
            need(tokens, 4, QStringLiteral("campo 40 \"Rótulo\" \"{coluna}\""));
            e.kind = Element::Kind::Field;
            e.width = tokens[1].text == QStringLiteral("*") ? -1 : number(tokens[1], "A largura");
            if (!tokens[2].quoted || !tokens[3].quoted)
                fail(QStringLiteral("campo leva a largura, o rótulo e o valor entre aspas"));
            e.texts << templ(tokens[2]) << templ(tokens[3]);
            i = 4;
        } else if (word == QStringLiteral("total")) {
            if (section_ != Section::GroupEnd && section_ != Section::Finish)
                fail(QStringLiteral("total só vale em [fim do grupo] e em [fim]"));
            need(tokens, 2, QStringLiteral("total \"Total geral\""));
            e.kind = Element::Kind::Total;
            if (!tokens[1].quoted) fail(QStringLiteral("o rótulo do total vai entre aspas"));
            e.texts << templ(tokens[1]);
            e.style.bold = true;
            totalLine_ = line_;
            i = 2;
        } else {
            fail(QStringLiteral("palavra desconhecida \"%1\" (use texto, régua, espaço, campo ou "
                                "total)")
                     .arg(tokens.first().text));
        }
        for (; i < tokens.size(); ++i)
            if (!option(tokens[i], e))
                fail(QStringLiteral("opção desconhecida \"%1\"").arg(tokens[i].text));
        return e;
    }

    void columnsLine(const QString& word, const QList<Token>& tokens) {
        if (word == QStringLiteral("estilo")) {
            for (int i = 1; i < tokens.size(); ++i) {
                const QString w = plain(tokens[i].text);
                if (w == QStringLiteral("listrado"))
                    layout_.striped = true;
                else if (w == QStringLiteral("grade"))
                    layout_.ruled = true;
                else
                    fail(QStringLiteral("estilo \"%1\" desconhecido (use listrado ou grade)")
                             .arg(tokens[i].text));
            }
            return;
        }
        if (word != QStringLiteral("coluna"))
            fail(QStringLiteral("em [colunas] cada linha é coluna ou estilo, não \"%1\"")
                     .arg(tokens.first().text));
        need(tokens, 4, QStringLiteral("coluna a6 \"Cliente\" 50"));
        ColumnDef c;
        c.sourceLine = line_;
        if (tokens[1].quoted) {
            c.value = templ(tokens[1]);
        } else {
            Template::Piece p;
            p.field = true;
            p.text = tokens[1].text;
            c.value.pieces << p;
        }
        if (!tokens[2].quoted) fail(QStringLiteral("o título da coluna vai entre aspas"));
        c.caption = tokens[2].text;
        c.width = tokens[3].text == QStringLiteral("*") ? -1 : number(tokens[3], "A largura");
        bool aligned = false;
        for (int i = 4; i < tokens.size(); ++i) {
            const QString w = plain(tokens[i].text);
            Format f;
            if (w == QStringLiteral("esquerda") || w == QStringLiteral("centro") ||
                w == QStringLiteral("direita")) {
                c.align = w == QStringLiteral("esquerda")
                              ? Align::Left
                              : (w == QStringLiteral("centro") ? Align::Centre : Align::Right);
                aligned = true;
            } else if (w == QStringLiteral("soma")) {
                c.aggregate = Aggregate::Sum;
            } else if (w == QStringLiteral("conta")) {
                c.aggregate = Aggregate::Count;
            } else if (w == QStringLiteral("crescer")) {
                c.grow = true;
            } else if (readFormat(tokens[i].text, f)) {
                c.format = f;
            } else {
                fail(QStringLiteral("opção de coluna desconhecida \"%1\"").arg(tokens[i].text));
            }
        }
        if (!aligned && c.format == Format::Money) c.align = Align::Right;
        if (c.aggregate == Aggregate::Sum && c.format == Format::Date)
            fail(QStringLiteral("uma coluna de datas não se soma"));
        layout_.columns << c;
    }

    // The words before the group's field in its heading ("Status: {ST}" gives "Status"),
    // else the column's name.
    QString groupCaption() const {
        for (const Element& e : layout_.groupHeader.elements) {
            for (const Template& t : e.texts) {
                QString words;
                for (const Template::Piece& p : t.pieces) {
                    if (p.field && p.text.compare(layout_.groupField, Qt::CaseInsensitive) == 0) {
                        words = words.trimmed();
                        if (words.endsWith(u':')) words.chop(1);
                        if (!words.trimmed().isEmpty()) return words.trimmed();
                        break;
                    }
                    words = p.field ? QString() : p.text;
                }
            }
        }
        return layout_.groupField;
    }

    void finish() {
        line_ = 0;
        if (!layout_.form.isEmpty() && layout_.tabular()) {
            throw LayoutError(file_, 1,
                              QStringLiteral("o relatório tem [colunas] e [ficha]; use uma delas"));
        }
        if (totalLine_ && !layout_.tabular())
            throw LayoutError(file_, totalLine_,
                              QStringLiteral("total precisa das [colunas] que ele soma"));
        if (layout_.form.isEmpty() && !layout_.tabular())
            throw LayoutError(file_, 1,
                              QStringLiteral("falta a seção [colunas] ou [ficha] com os dados"));
        // The group's value is said once on the page, above its rows; a spreadsheet has no
        // headings, so there it stands on every row, in a column of its own.
        if (!layout_.groupField.isEmpty() && layout_.tabular()) {
            bool shown = false;
            for (const ColumnDef& c : std::as_const(layout_.columns))
                shown = shown ||
                        c.value.onlyField().compare(layout_.groupField, Qt::CaseInsensitive) == 0;
            if (!shown) {
                ColumnDef c;
                c.value.pieces << Template::Piece{true, layout_.groupField, Format::Plain, false};
                c.caption = groupCaption();
                c.hidden = true;
                layout_.columns << c;
            }
        }
    }
};

} // namespace

Layout parseLayout(const QString& text, const QString& fileName) {
    return Parser(fileName).run(text);
}

QString layoutPath(const QString& folder, const QString& file) {
    const QDir dir(folder);
    if (dir.exists(file)) return dir.filePath(file);
    const QStringList all = dir.entryList(QDir::Files);
    for (const QString& name : all)
        if (name.compare(file, Qt::CaseInsensitive) == 0) return dir.filePath(name);
    return dir.filePath(file);
}

Layout loadLayout(const QString& path) {
    const QFileInfo info(path);
    const QString name = info.fileName();
    if (!info.exists())
        throw LayoutError(
            name, 0,
            QStringLiteral("O arquivo de relatório %1 não foi encontrado na pasta %2.\n"
                           "Os relatórios que faltam são refeitos por "
                           "\"rotalix --init %2\".")
                .arg(name, info.absolutePath()));
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        throw LayoutError(name, 0,
                          QStringLiteral("Não foi possível ler o arquivo de relatório %1: %2.")
                              .arg(path, f.errorString()));
    const QByteArray bytes = f.readAll();
    QStringDecoder utf8(QStringDecoder::Utf8);
    QString text = utf8.decode(bytes);
    if (utf8.hasError()) {
        // A layout saved by an editor in the old Windows code page still reads.
        text = QString::fromLatin1(bytes);
    }
    if (text.startsWith(QChar(0xFEFF))) text.remove(0, 1);
    return parseLayout(text, name);
}

} // namespace rtx::output
