// Portuguese. The view and other tabs and the 1x1 check box keep their English captions.
#include "settings/message_table.h"

namespace korvatek::settings {

const LanguageTexts& LanguagePO() {
    static const LanguageTexts texts{
        4,
        "LanguagePO",
        {
            "Completado com sucesso.",
            "Esta imagem já foi substituída. Reinicie o programa ou conclua o patch iniciado",
            "Arquivo ",
            "A nova imagem é maior que a atual!",
            "Este modelo de telefone não é suportado: ",
            " já existe e será substituído",
            "O arquivo não existe!",
            " não foi encontrado e será substituído por uma imagem vazia",
            "Escolha a pasta para salvar os arquivos",
            "Escolha a pasta para abrir os arquivos",
            "O tamanho máximo da imagem é 240x320!",
            "Salvar o canal alfa da imagem?",
            "As imagens ocupam espaço demais no total!",
            "Esta versão de firmware não é suportada:",
            "Este GPF não é suportado! Por favor, contate o autor",
            "Escolha o arquivo ",
            "Arquivo desconhecido!",
            "Digite o tamanho '6 ate 64'",
            "Você só pode trabalhar com fontes",
            "Feito para a comunidade de modificação de telefones",
            "Aguarde cerca de 3 segundos..",
            "não foi encontrado na pasta do programa!",
            "Tradução: equipe Korvatek",
            "Espaço livre no Fullflash não encontrado!",
            // rows added later
            "Não foi possível abrir o arquivo ",
            "Não foi possível gravar o arquivo ",
            "Este arquivo é curto demais para um fullflash: ",
            "Os dados da imagem ultrapassam a área de 240x320!",
            "O deslocamento dos dados da imagem é 0, nada a mostrar!",
            "O tamanho máximo da imagem é 255x255 para GPF!",
            "Não existe essa imagem na lista: ",
            "Este não é um BMP de 24 ou 32 bits!",
            "BMPs comprimidos não são suportados!",
            "Esta não é uma linha de patch V_Klay: ",
            "Os bytes antigos não conferem com o fullflash no endereço 0x",
            "Endereço do patch além do fim do fullflash: 0x",
            "A cópia com o patch deve ser um arquivo novo, não o próprio fullflash!",
            "O patch confere com o fullflash. Abrir a cópia com o patch agora?",
            "Este caractere não cabe na grade de 101x101!",
            "A tabela de caracteres desta fonte não pode ser lida: ",
            "Caracteres desta fonte estão fora do fullflash: ",
            "A fonte reconstruída precisa de %1 bytes, mas seus caracteres só têm espaço para %2 bytes!",
            "Caracteres alterados: ",
            "Um caractere reconstruído não pode ser alcançado pela tabela da fonte: caractere ",
            "Fonte inexistente: ",
            "Caractere inexistente na lista: ",
        },
        {
            "Arquivo", "Abrir", "Sair", "Ferramentas", "Comparar GPFs", "Lumbra (Korvatek) g.patch>GPF2s", "Opções", "Sobre", "Verificar patch..",
            "Carregar GPF", "Carregar GPFs", "Carregar BMP", "Carregar BMPs", "Salvar como GPF", "Salvar todos (GPF)", "Salvar como BMP", "Salvar todos (BMP)", "Salvar patch VKP", "Copiar para a área de transferência", "Descartar patch",
            "Carregar BMP", "Carregar BMPs", "Salvar como BMP", "Salvar todos (BMP)", "Salvar patch VKP", "Comparar fonte..", "Alterar tamanho da fonte..", "Copiar para a área de transferência", "Descartar patch",
            "Korvatek, um editor de imagens e fontes para fullflashes de E71 e EL71", "Código-fonte e atualizações: veja a página do projeto", "Agradecimentos especiais a:", "todos que mapearam as tabelas de imagens e fontes do E71 e do EL71", "todos os testadores e pesquisadores",
            "Imagens", "Fontes", "Fonte",
            "Opções", "view", "other",
            "Russo", "Inglês", "Eslovaco", "Português", "Polonês",
            "Associar a *.gpf", "Associar a *.gpf2", "Mostrar mensagem de sucesso", "Show replacing to 1x1",
            "OK", "Cancelar", "Aplicar", "Padrões",
        },
    };
    return texts;
}

}  // namespace korvatek::settings
