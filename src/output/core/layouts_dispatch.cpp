// The default layouts of the dispatch and register reports: the A4 slip (one or two to a
// page), the lists of couriers and clients, and the dispatches of a courier, of a client, of
// a status or way of payment, and of all statuses.

#include "defaultlayouts.h"

namespace rtx::output {

namespace {

const char16_t kAtende[] =
    uR"rpt(# ATENDE.rpt: o atendimento numa folha A4, para entregar ao entregador.
# Lê a tabela de atendimentos, selecionada pelo número do atendimento; a fórmula NOME traz
# o nome e o telefone da empresa. O formato deste arquivo está em docs/report-format.md.
# Os campos com "crescer" aumentam até caber o texto inteiro (endereços, observações).

título "Ordem de serviço"
página A4 retrato
margens 12 15 12 15
letra 10

[cabeçalho]
texto "ORDEM DE SERVIÇO" centro tamanho=16 negrito
texto "{NOME}" centro tamanho=11 negrito
texto "{empresa.endereço} - {empresa.bairro} - {empresa.cidade}/{empresa.uf} - CEP {empresa.cep} - CNPJ {empresa.cnpj}" centro tamanho=8
régua grossa
espaço 2

[ficha]
nova página
campo 38 "Atendimento nº" "{CODIGO}" tamanho=14 negrito
campo 30 "Data" "{a2}" tamanho=12
campo 20 "Hora" "{a3}" tamanho=12
campo 50 "Atendente" "{a1}"
campo * "Status" "{ST}"
espaço 3
texto "CLIENTE" negrito fundo
campo 120 "Nome" "{a6}" negrito crescer
campo * "Telefone" "{a4:telefone}"
campo 90 "Contato" "{a5}" crescer
campo * "Tipo de cliente" "{a8}"
campo * "Endereço" "{a7}" crescer
espaço 3
texto "ORIGEM (COLETA)" negrito fundo
campo * "Endereço" "{a9}" tamanho=11 negrito crescer
campo 70 "Contato" "{a10}" crescer
campo 45 "Telefone" "{a11:telefone}"
campo * "Tarefa" "{a12}" crescer
espaço 3
texto "DESTINO (ENTREGA)" negrito fundo
campo * "Endereço" "{a13}" tamanho=11 negrito crescer
campo 70 "Contato" "{a14}" crescer
campo 45 "Telefone" "{a15:telefone}"
campo * "Tarefa" "{a16}" crescer
espaço 3
texto "SERVIÇO" negrito fundo
campo 100 "Serviço" "{a21}" crescer
campo * "Com retorno" "{a22}"
campo 60 "Entregador" "{a18}" negrito tamanho=12
campo 40 "Pagamento" "{a20}"
campo 40 "Valor do cliente (R$)" "{a19}" direita negrito tamanho=12
campo * "Valor do entregador (R$)" "{VE}" direita
campo * "Observações" "{a17}" linhas=4 crescer
espaço 10
campo 90 "Entregador (assinatura)" "" linhas=3
campo * "Recebido por (nome legível, data e hora)" "" linhas=3

[rodapé]
régua fina
texto "Impresso em {agora}" "Página {página} de {páginas}" tamanho=7.5 itálico
)rpt";

const char16_t kAtende1[] =
    uR"rpt(# ATENDE1.rpt: o atendimento duas vezes na mesma folha A4 ("Em 2 Vias"), uma via para
# o entregador e outra para o escritório, com uma linha tracejada para cortar entre elas.
# Lê a tabela de atendimentos, selecionada pelo número; a fórmula NOME traz a empresa.

título "Ordem de serviço (2 vias)"
página A4 retrato
margens 8 12 8 12
letra 8

[ficha]
nova página
cópias 2
texto "{NOME}" "ORDEM DE SERVIÇO" tamanho=11 negrito
texto "{empresa.endereço} - {empresa.bairro} - {empresa.cidade}/{empresa.uf}" "Impresso em {agora}" tamanho=7
régua
campo 32 "Atendimento nº" "{CODIGO}" tamanho=11 negrito
campo 24 "Data" "{a2}"
campo 16 "Hora" "{a3}"
campo 40 "Atendente" "{a1}"
campo * "Status" "{ST}"
campo 95 "Cliente" "{a6}" negrito crescer
campo 35 "Telefone" "{a4:telefone}"
campo * "Contato" "{a5}" crescer
campo * "Origem (coleta)" "{a9}" negrito crescer
campo 55 "Contato" "{a10}" crescer
campo 35 "Telefone" "{a11:telefone}"
campo * "Tarefa" "{a12}" crescer
campo * "Destino (entrega)" "{a13}" negrito crescer
campo 55 "Contato" "{a14}" crescer
campo 35 "Telefone" "{a15:telefone}"
campo * "Tarefa" "{a16}" crescer
campo 70 "Serviço" "{a21}" crescer
campo 22 "Retorno" "{a22}"
campo 38 "Entregador" "{a18}" negrito
campo 22 "Pagamento" "{a20}"
campo * "Valor (R$)" "{a19}" direita negrito
campo * "Observações" "{a17}" linhas=2 crescer
campo 90 "Entregador (assinatura)" "" linhas=2
campo * "Recebido por (nome, data e hora)" "" linhas=2
)rpt";

const char16_t kRela1[] = uR"rpt(# rela1.rpt: os entregadores cadastrados, por nome.
# Lê a tabela de entregadores (motoqueiros), sem seleção.

título "Relação de entregadores"
página A4 paisagem
margens 12 12 12 12
letra 8
fonte "DejaVu Sans Condensed"
ordem C5

[cabeçalho]
texto "{empresa.nome}" "{título}" tamanho=12 negrito
texto "{empresa.endereço} - {empresa.bairro} - {empresa.cidade}/{empresa.uf} - Tel. {empresa.telefone}" tamanho=7.5
régua grossa
espaço 1

[colunas]
estilo grade listrado
coluna CODIGO "Código" 14
coluna C4 "Apelido" 28
coluna C5 "Nome" *
coluna C3 "CPF" 28 cpf
coluna "{C8:telefone}  {C9:telefone}" "Telefones" 48
coluna C23 "Moto" 34
coluna C28 "Entrega (R$)" 24 "###,##0.00"
coluna C2 "Admissão" 20 dd/mm/yyyy centro
coluna C1 "Situação" 18

[fim]
espaço 1
texto "Total: {linhas} entregador(es)" negrito

[rodapé]
régua fina
texto "Impresso em {agora}" "Página {página} de {páginas}" tamanho=7.5 itálico
)rpt";

const char16_t kRela2[] = uR"rpt(# rela2.rpt: os clientes cadastrados, por nome.
# Lê a tabela de clientes, sem seleção.

título "Relação de clientes"
página A4 paisagem
margens 12 12 12 12
letra 8
fonte "DejaVu Sans Condensed"
ordem C5

[cabeçalho]
texto "{empresa.nome}" "{título}" tamanho=12 negrito
texto "{empresa.endereço} - {empresa.bairro} - {empresa.cidade}/{empresa.uf} - Tel. {empresa.telefone}" tamanho=7.5
régua grossa
espaço 1

[colunas]
estilo grade listrado
coluna CODIGO "Código" 14
coluna C5 "Nome / razão social" *
coluna C3 "CNPJ / CPF" 30 cnpj
coluna C7 "Contato" 34
coluna "{C8:telefone}  {C9:telefone}" "Telefones" 44
coluna "{C14}  {C15}  {C13:cep}" "Endereço" 66
coluna C25 "Tipo" 20
coluna C1 "Situação" 16

[fim]
espaço 1
texto "Total: {linhas} cliente(s)" negrito

[rodapé]
régua fina
texto "Impresso em {agora}" "Página {página} de {páginas}" tamanho=7.5 itálico
)rpt";

// The three dispatch lists serve two data sources: the dispatch table with the formulas
// DATA (and VM) and a selection, and the station's work table with DI, DF and MOTO.
const char16_t kRela3[] =
    uR"rpt(# rela3.rpt: os atendimentos de um entregador num período, com o valor do entregador.
# Serve a duas fontes de dados:
#  - a tabela de atendimentos, selecionada pelo entregador e pelo período, com as fórmulas
#    DATA (o período) e VM (o valor por entrega);
#  - a tabela de trabalho rel_atendimentos, com DI e DF (o período) e MOTO (o entregador).
# Uma linha com "omitir-vazio" some quando todos os seus campos estão vazios.

título "Atendimentos por entregador"
página A4 paisagem
margens 12 12 12 12
letra 8
fonte "DejaVu Sans Condensed"
ordem a2 a3 CODIGO

[cabeçalho]
texto "{empresa.nome}" "{título}" tamanho=12 negrito
texto "{empresa.endereço} - {empresa.bairro} - {empresa.cidade}/{empresa.uf} - Tel. {empresa.telefone}" tamanho=7.5
régua grossa
texto "Entregador: {seleção}{rel_atendimentos.MOTO}" tamanho=10 negrito
texto "Período: {DATA}" omitir-vazio
texto "Período: {DI} a {DF}" omitir-vazio
texto "Valor por entrega: R$ {VM}" omitir-vazio
espaço 1

[colunas]
estilo grade listrado
coluna CODIGO "Nº" 16
coluna a2 "Data" 18 dd/mm/yyyy centro
coluna a3 "Hora" 11 centro
coluna a6 "Cliente" *
coluna a9 "Origem" 52
coluna a13 "Destino" 52
coluna a21 "Serviço" 32
coluna ST "Status" 22
coluna VE "Valor (R$)" 22 "###,##0.00" soma

[fim]
total "Total do período: {linhas} atendimento(s)"

[rodapé]
régua fina
texto "Impresso em {agora}" "Página {página} de {páginas}" tamanho=7.5 itálico
)rpt";

const char16_t kRela4[] =
    uR"rpt(# rela4.rpt: os atendimentos de um cliente num período, com o valor cobrado.
# Serve a duas fontes de dados:
#  - a tabela de atendimentos, selecionada pelo cliente e pelo período, com a fórmula DATA;
#  - a tabela de trabalho rel_atendimentos, com DI e DF (o período) e MOTO (o cliente).

título "Atendimentos por cliente"
página A4 paisagem
margens 12 12 12 12
letra 8
fonte "DejaVu Sans Condensed"
ordem a2 a3 CODIGO

[cabeçalho]
texto "{empresa.nome}" "{título}" tamanho=12 negrito
texto "{empresa.endereço} - {empresa.bairro} - {empresa.cidade}/{empresa.uf} - Tel. {empresa.telefone}" tamanho=7.5
régua grossa
texto "Cliente: {seleção}{rel_atendimentos.MOTO}" tamanho=10 negrito
texto "Período: {DATA}" omitir-vazio
texto "Período: {DI} a {DF}" omitir-vazio
espaço 1

[colunas]
estilo grade listrado
coluna CODIGO "Nº" 16
coluna a2 "Data" 18 dd/mm/yyyy centro
coluna a3 "Hora" 11 centro
coluna a9 "Origem" *
coluna a13 "Destino" *
coluna a21 "Serviço" 34
coluna a18 "Entregador" 26
coluna ST "Status" 22
coluna a19 "Valor (R$)" 22 "###,##0.00" soma

[fim]
total "Total do período: {linhas} atendimento(s)"

[rodapé]
régua fina
texto "Impresso em {agora}" "Página {página} de {páginas}" tamanho=7.5 itálico
)rpt";

const char16_t kRela5[] =
    uR"rpt(# rela5.rpt: os atendimentos de um status (ou de uma forma de pagamento) num período.
# Serve a duas fontes de dados:
#  - a tabela de atendimentos, selecionada pelo status e pelo período, com a fórmula DATA;
#  - a tabela de trabalho rel_atendimentos, com DI e DF (o período) e MOTO, que traz o
#    status escolhido, também no relatório por forma de pagamento.

título "Atendimentos por status"
página A4 paisagem
margens 12 12 12 12
letra 8
fonte "DejaVu Sans Condensed"
ordem a2 a3 CODIGO

[cabeçalho]
texto "{empresa.nome}" "{título}" tamanho=12 negrito
texto "{empresa.endereço} - {empresa.bairro} - {empresa.cidade}/{empresa.uf} - Tel. {empresa.telefone}" tamanho=7.5
régua grossa
texto "Status: {seleção}{rel_atendimentos.MOTO}" tamanho=10 negrito
texto "Período: {DATA}" omitir-vazio
texto "Período: {DI} a {DF}" omitir-vazio
espaço 1

[colunas]
estilo grade listrado
coluna CODIGO "Nº" 16
coluna a2 "Data" 18 dd/mm/yyyy centro
coluna a6 "Cliente" *
coluna a13 "Destino" 56
coluna a18 "Entregador" 28
coluna a20 "Pagamento" 22
coluna ST "Status" 24
coluna a19 "Valor (R$)" 22 "###,##0.00" soma

[fim]
total "Total do período: {linhas} atendimento(s)"

[rodapé]
régua fina
texto "Impresso em {agora}" "Página {página} de {páginas}" tamanho=7.5 itálico
)rpt";

const char16_t kRela5x[] =
    uR"rpt(# rela5x.rpt: os atendimentos de todos os status num período, com o total de cada status.
# Lê a tabela de trabalho rel_atendimentos, com DI e DF (o período).

título "Atendimentos de todos os status"
página A4 paisagem
margens 12 12 12 12
letra 8
fonte "DejaVu Sans Condensed"
ordem a2 a3 CODIGO

[cabeçalho]
texto "{empresa.nome}" "{título}" tamanho=12 negrito
texto "{empresa.endereço} - {empresa.bairro} - {empresa.cidade}/{empresa.uf} - Tel. {empresa.telefone}" tamanho=7.5
régua grossa
texto "Período: {DATA}" omitir-vazio
texto "Período: {DI} a {DF}" omitir-vazio
espaço 1

[colunas]
estilo grade listrado
coluna CODIGO "Nº" 16
coluna a2 "Data" 18 dd/mm/yyyy centro
coluna a6 "Cliente" *
coluna a13 "Destino" 60
coluna a18 "Entregador" 30
coluna a20 "Pagamento" 24
coluna a21 "Serviço" 34
coluna a19 "Valor (R$)" 22 "###,##0.00" soma

[grupo ST]
espaço 1.5
texto "Status: {ST}" negrito tamanho=9 fundo

[fim do grupo]
total "Total de {ST}: {linhas} atendimento(s)"
espaço 2

[fim]
total "Total geral do período: {linhas} atendimento(s)"

[rodapé]
régua fina
texto "Impresso em {agora}" "Página {página} de {páginas}" tamanho=7.5 itálico
)rpt";

DefaultLayout layout(const char* file, const char16_t* text) {
    return {QString::fromLatin1(file), QString::fromUtf16(text)};
}

} // namespace

QList<DefaultLayout> dispatchLayouts() {
    return {layout("ATENDE.rpt", kAtende), layout("ATENDE1.rpt", kAtende1),
            layout("rela1.rpt", kRela1),   layout("rela2.rpt", kRela2),
            layout("rela3.rpt", kRela3),   layout("rela4.rpt", kRela4),
            layout("rela5.rpt", kRela5),   layout("rela5x.rpt", kRela5x)};
}

} // namespace rtx::output
