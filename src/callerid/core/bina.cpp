#include "bina.h"

#include "audiosource.h"
#include "serialsource.h"

#include <QDir>
#include <QSettings>

namespace rtx::callerid {

using namespace Qt::Literals::StringLiterals;

QStringList defaultCommands() {
    // Conexant and most voice modems; Rockwell and the older ones; Agere/Lucent; Intel.
    return {u"AT+VCID=1"_s, u"AT#CID=1"_s, u"AT%CCID=1"_s, u"AT+CID=1"_s};
}

BinaSettings readBinaSettings(const QString& folder) {
    BinaSettings s;
    s.iniFile = QDir(folder).filePath(u"rotalix.ini"_s);
    s.commands = defaultCommands();
    QSettings ini(s.iniFile, QSettings::IniFormat);
    ini.beginGroup(u"bina"_s);
    const QString source = ini.value(u"fonte"_s).toString().trimmed().toLower();
    s.port = ini.value(u"porta"_s).toString().trimmed();
    s.audioDevice = ini.value(u"dispositivo"_s).toString().trimmed();
    if (source == u"serial"_s || source == u"modem"_s)
        s.source = BinaSettings::Source::Serial;
    else if (source == u"audio"_s || source == u"áudio"_s || source == u"som"_s)
        s.source = BinaSettings::Source::Audio;
    else if (source.isEmpty() && !s.port.isEmpty())
        s.source = BinaSettings::Source::Serial;
    else if (!source.isEmpty())
        s.problem = u"A fonte \"%1\" do grupo [bina] do rotalix.ini não é conhecida (use serial "
                    u"ou audio)."_s.arg(source);
    if (s.source == BinaSettings::Source::Serial && s.port.isEmpty()) {
        s.source = BinaSettings::Source::None;
        s.problem = u"O grupo [bina] do rotalix.ini pede a porta serial, mas não diz qual "
                    u"(porta=/dev/ttyUSB0)."_s;
    }
    bool ok = false;
    const int baud = ini.value(u"velocidade"_s).toInt(&ok);
    if (ok && baud > 0) s.baud = baud;
    const int rate = ini.value(u"taxa"_s).toInt(&ok);
    if (ok && rate >= 8000) s.sampleRate = rate;
    if (ini.contains(u"comandos"_s)) {
        // "a, b" is read as a list; a single command as text. An empty value sends none (a
        // box that does not speak AT).
        s.commands.clear();
        for (const QString& c : ini.value(u"comandos"_s).toStringList())
            for (const QString& part : c.split(u'|', Qt::SkipEmptyParts))
                if (!part.trimmed().isEmpty()) s.commands << part.trimmed();
    }
    QString ddd;
    for (QChar c : ini.value(u"ddd_local"_s).toString())
        if (c.isDigit()) ddd += c;
    s.plan.localAreaCode = ddd;
    const QString withDdd = ini.value(u"ddd_nos_locais"_s, u"sim"_s).toString().trimmed().toLower();
    s.plan.localWithAreaCode =
        !(withDdd == u"nao"_s || withDdd == u"não"_s || withDdd == u"0"_s || withDdd == u"false"_s);
    return s;
}

QString howToSetDevice(const QString& iniFile) {
    return u"Nenhum identificador de chamadas (bina) está configurado.\n\n"
           u"Acrescente ao arquivo %1 o grupo:\n\n"
           u"[bina]\nfonte=serial\nporta=/dev/ttyUSB0\nddd_local=11\n\n"
           u"para um modem ou aparelho de bina na porta serial, ou\n\n"
           u"[bina]\nfonte=audio\ndispositivo=(nome da entrada de som)\nddd_local=11\n\n"
           u"para a linha ligada à entrada de som do computador."_s.arg(
               QDir::toNativeSeparators(iniFile));
}

CallerIdService::CallerIdService(BinaSettings settings, QObject* parent)
    : QObject(parent), settings_(std::move(settings)) {
    qRegisterMetaType<rtx::callerid::Call>();
    qRegisterMetaType<rtx::callerid::CallerInfo>();
}

CallerIdService::~CallerIdService() {
    disarm();
}

bool CallerIdService::arm() {
    if (armed_) return true;
    if (!settings_.problem.isEmpty()) {
        emit notice(settings_.problem);
        return false;
    }
    switch (settings_.source) {
    case BinaSettings::Source::None:
        emit notice(howToSetDevice(settings_.iniFile));
        return false;
    case BinaSettings::Source::Serial:
        source_ = std::make_unique<SerialCallerId>(settings_);
        break;
    case BinaSettings::Source::Audio:
        source_ = std::make_unique<AudioCallerId>(settings_);
        break;
    }
    connect(source_.get(), &CallerIdSource::caller, this, &CallerIdService::onCaller);
    connect(source_.get(), &CallerIdSource::problem, this, &CallerIdService::notice);
    connect(source_.get(), &CallerIdSource::noise, this, [this](const QString& text) {
        if (lastNoise_.isValid() && lastNoise_.elapsed() < 30000) return;
        lastNoise_.start();
        emit notice(
            u"O identificador de chamadas mandou algo que não foi entendido: \"%1\"."_s.arg(text));
    });
    if (!source_->open()) {
        source_.reset();
        return false;
    }
    armed_ = true;
    return true;
}

void CallerIdService::disarm() {
    if (source_) {
        source_->disconnect(this);
        source_->close();
        source_.reset();
    }
    armed_ = false;
}

QString CallerIdService::statusText() const {
    if (!armed_ || !source_) return u"Bina desligada."_s;
    return u"Bina ativa (%1)."_s.arg(source_->where());
}

void CallerIdService::onCaller(const CallerInfo& info) {
    const Call call = officeCall(info, settings_.plan);
    emit incomingCall(call);
    if (const QString text = callNotice(call); !text.isEmpty()) emit notice(text);
}

} // namespace rtx::callerid
