// The default layouts of the office reports: the cash book (the search and the day), the
// payables and receivables, the receipt and the agenda.

#include "defaultlayouts.h"

namespace rtx::output {

namespace {

const char16_t kTmp[] =
    uR"rpt(# TMP.rpt: a pesquisa do caixa como a grade a mostrou: as mesmas linhas, na mesma ordem.
# Lê a tabela de trabalho rel_caixa_impressao: A1 a data, A2 a operação (repetida de A3 a
# A8, como sempre foi), DOC o documento, TIPO, DESCR o descritivo, PLANO o grupo, DE e CR o
# valor do lado da operação, CODIGO o controle.

título "Movimento do caixa"
página A4 paisagem
margens 12 12 12 12
letra 8
fonte "DejaVu Sans Condensed"

[cabeçalho]
texto "{empresa.nome}" "{título}" tamanho=12 negrito
texto "{empresa.endereço} - {empresa.bairro} - {empresa.cidade}/{empresa.uf} - Tel. {empresa.telefone}" tamanho=7.5
régua grossa
espaço 1

[colunas]
estilo grade listrado
coluna A1 "Data" 20 dd/mm/yyyy centro
coluna A2 "Operação" 20
coluna DOC "Nr.Documento" 26
coluna TIPO "Tipo" 34
coluna DESCR "Descritivo" * crescer
coluna PLANO "Grupo" 40
coluna DE "Débito (R$)" 24 "###,##0.00" soma
coluna CR "Crédito (R$)" 24 "###,##0.00" soma
coluna CODIGO "Controle" 18

[fim]
total "Total: {linhas} lançamento(s)"

[rodapé]
régua fina
texto "Impresso em {agora}" "Página {página} de {páginas}" tamanho=7.5 itálico
)rpt";

const char16_t kCx1[] =
    uR"rpt(# CX1.rpt: o movimento do caixa de um dia, com débitos, créditos e saldos.
# Lê a tabela de trabalho rel_caixa; a fórmula nome traz o nome da empresa.

título "Caixa do dia"
página A4 paisagem
margens 12 12 12 12
letra 8
fonte "DejaVu Sans Condensed"
ordem A1 CODIGO

[cabeçalho]
texto "{nome}" "{título}" tamanho=12 negrito
texto "{empresa.endereço} - {empresa.bairro} - {empresa.cidade}/{empresa.uf} - Tel. {empresa.telefone}" tamanho=7.5
régua grossa
texto "Dia: {A1:dd/mm/yyyy}" tamanho=10 negrito omitir-vazio
texto "Saldo anterior: R$ {limi}" omitir-vazio
espaço 1

[colunas]
estilo grade listrado
coluna CODIGO "Controle" 18
coluna A1 "Data" 18 dd/mm/yyyy centro
coluna A2 "Operação" 20
coluna A3 "Documento" 20
coluna A4 "Tipo" 30
coluna A6 "Descritivo" * crescer
coluna PLANO "Grupo" 34
coluna DE "Débito (R$)" 24 "###,##0.00" soma
coluna CR "Crédito (R$)" 24 "###,##0.00" soma

[fim]
total "Totais do dia: {linhas} lançamento(s)"
espaço 2
texto "Saldo do caixa: R$ {SALDO}" negrito tamanho=10 omitir-vazio

[rodapé]
régua fina
texto "Impresso em {agora}" "Página {página} de {páginas}" tamanho=7.5 itálico
)rpt";

const char16_t kContas[] =
    uR"rpt(# contas.rpt: contas a pagar ou a receber de um período, como a lista da tela as mostrou.
# Lê a tabela de trabalho rel_contas: nome (o título), DI e DF (o período), A1 vencimento,
# A2 valor, A3 fornecedor ou cliente, A4 descritivo, A5 valor da baixa, A6 controle, A7 grupo.

título "Contas"
página A4 paisagem
margens 12 12 12 12
letra 8
fonte "DejaVu Sans Condensed"
ordem A1 A6

[cabeçalho]
texto "{empresa.nome}" "{nome}" tamanho=12 negrito
texto "{empresa.endereço} - {empresa.bairro} - {empresa.cidade}/{empresa.uf} - Tel. {empresa.telefone}" tamanho=7.5
régua grossa
texto "Período: {DI} a {DF}" tamanho=10 negrito omitir-vazio
espaço 1

[colunas]
estilo grade listrado
coluna A1 "Vencimento" 22 dd/mm/yyyy centro
coluna A6 "Controle" 18
coluna A3 "Fornecedor / cliente" *
coluna A4 "Descritivo" 70 crescer
coluna A7 "Grupo" 40
coluna A2 "Valor (R$)" 24 "###,##0.00" soma
coluna A5 "Baixa (R$)" 24 "###,##0.00" soma

[fim]
total "Total: {linhas} conta(s)"

[rodapé]
régua fina
texto "Impresso em {agora}" "Página {página} de {páginas}" tamanho=7.5 itálico
)rpt";

const char16_t kReci[] =
    uR"rpt(# RECI.rpt: o recibo em duas vias numa folha A4, selecionado pelo número. Lê a tabela de
# recibos: R2 pagador, R3 CNPJ/CPF, R4 data, R5 a R8 endereço, R9 valor, R10 valor por
# extenso, R11 referente a, R12 banco e cheque, R13 recebido por, R15 a R20 a empresa como
# estava no recibo (quando vazios, vale o cadastro da empresa).

título "Recibo"
página A4 retrato
margens 12 18 12 18
letra 10

[ficha]
nova página
cópias 2
texto "{R15|empresa.nome}" "RECIBO" tamanho=14 negrito
texto "{R18|empresa.endereço} - {R19|empresa.cidade}" "Nº {CODIGO}" tamanho=8
texto "Tel. {R16|empresa.telefone:telefone}   CNPJ {R20|empresa.cnpj:cnpj}" tamanho=8
régua grossa
espaço 3
texto "VALOR: R$ {R9}" direita tamanho=15 negrito caixa
espaço 4
# R10 já traz os parênteses e o ponto final com que a tela o grava.
texto "Recebemos de {R2} a importância de R$ {R9} {R10} Referente a {R11}." linhas=3 crescer tamanho=11
texto "CNPJ/CPF do pagador: {R3:cnpj}" omitir-vazio tamanho=9
texto "Endereço do pagador: {R5} - {R6} - {R7}/{R8}" omitir-vazio crescer tamanho=9
texto "Banco / cheque nº: {R12}" omitir-vazio tamanho=9
espaço 5
texto "{R19|empresa.cidade}, {R4}" direita
espaço 14
texto "______________________________________" centro
texto "{R13}" centro negrito
texto "{R15|empresa.nome}" centro tamanho=8
)rpt";

const char16_t kAgenda[] =
    uR"rpt(# AGENDAk.rpt: os compromissos da agenda de um período, como a lista da tela os mostrou.
# Lê a tabela de trabalho rel_agenda: DI e DF (o período), GRUPO (já com o rótulo "GRUPO:"), A1 (a linha da lista).

título "Agenda"
página A4 retrato
margens 12 15 12 15
letra 9
fonte "DejaVu Sans Condensed"

[cabeçalho]
texto "{empresa.nome}" "{título}" tamanho=12 negrito
régua grossa
texto "Período: {DI} a {DF}" tamanho=10 negrito omitir-vazio
texto "{GRUPO}" omitir-vazio
espaço 1

[colunas]
estilo grade listrado
coluna A1 "Agendamentos" * crescer

[fim]
espaço 1
texto "Total: {linhas} agendamento(s)" negrito

[rodapé]
régua fina
texto "Impresso em {agora}" "Página {página} de {páginas}" tamanho=7.5 itálico
)rpt";

DefaultLayout layout(const char* file, const char16_t* text) {
    return {QString::fromLatin1(file), QString::fromUtf16(text)};
}

} // namespace

QList<DefaultLayout> officeLayouts() {
    return {layout("TMP.rpt", kTmp), layout("CX1.rpt", kCx1), layout("contas.rpt", kContas),
            layout("RECI.rpt", kReci), layout("AGENDAk.rpt", kAgenda)};
}

} // namespace rtx::output
