// Slovak. The view and other tabs and the 1x1 check box keep their English captions.
#include "settings/message_table.h"

namespace korvatek::settings {

const LanguageTexts& LanguageSL() {
    static const LanguageTexts texts{
        3,
        "LanguageSL",
        {
            "Úspešne dokončené",
            "Tento obrázok je už nahradený. Reštartujte program alebo dokončite začatý patch",
            "Súbor ",
            "Nový obrázok je väčší ako súčasný!",
            "Tento model telefónu nie je podporovaný: ",
            " už existuje a bude nahradený",
            "Súbor neexistuje!",
            " sa nenašiel a bude nahradený prázdnym obrázkom",
            "Vyberte priečinok na uloženie súborov",
            "Vyberte priečinok na otvorenie súborov",
            "Maximálna veľkosť obrázka je 240x320!",
            "Uložiť alfa kanál obrázka?",
            "Obrázky zaberajú príliš veľa miesta!",
            "Táto verzia firmvéru nie je podporovaná:",
            "Tento GPF nie je podporovaný! Kontaktujte prosím autora",
            "Vyberte súbor ",
            "Neznámy súbor!",
            "Vstupná veľkosť od 6 do 64",
            "Môžete pracovať iba s fontami",
            "Vytvorené pre komunitu nadšencov úprav mobilných telefónov",
            "Čakajte prosím asi 3 sekundy..",
            "sa nenašiel v priečinku programu!",
            "Preklad: tím Korvatek",
            "Voľné miesto vo Fullflash sa nenašlo!",
            // rows added later
            "Nedá sa otvoriť súbor ",
            "Nedá sa zapísať súbor ",
            "Tento súbor je príliš krátky na fullflash: ",
            "Údaje obrázka presahujú oblasť 240x320!",
            "Posun údajov obrázka je 0, nie je čo zobraziť!",
            "Maximálna veľkosť obrázka pre GPF je 255x255!",
            "Takýto obrázok nie je v zozname: ",
            "Toto nie je 24- alebo 32-bitový BMP!",
            "Komprimované BMP nie sú podporované!",
            "Toto nie je riadok patchu V_Klay: ",
            "Staré bajty sa nezhodujú s fullflash na adrese 0x",
            "Adresa patchu je za koncom fullflash: 0x",
            "Kópia s patchom musí byť nový súbor, nie samotný fullflash!",
            "Patch sa zhoduje s fullflash. Otvoriť kópiu s patchom?",
            "Tento znak sa nezmestí do mriežky 101x101!",
            "Tabuľku znakov tohto písma nemožno prečítať: ",
            "Znaky tohto písma ležia mimo fullflash: ",
            "Prestavané písmo potrebuje %1 bajtov, ale miesto pre jeho znaky má len %2 bajtov!",
            "Zmenené znaky: ",
            "Na prestavaný znak sa nedá odkázať z tabuľky písma: znak ",
            "Takéto písmo neexistuje: ",
            "Takýto znak v zozname nie je: ",
        },
        {
            "Súbor", "Otvoriť", "Koniec", "Nástroje", "Porovnať GPF", "Lumbra (Korvatek) g.patch>GPF2", "Možnosti", "O programe", "Skontrolovať patch..",
            "Načítať GPF", "Načítať GPF z priečinka", "Načítať BMP", "Načítať BMP z priečinka", "Uložiť ako GPF", "Uložiť všetko (GPF)", "Uložiť ako BMP", "Uložiť všetko (BMP)", "Uložiť patch VKP", "Kopírovať do schránky", "Zahodiť patch",
            "Načítať BMP", "Načítať BMP z priečinka", "Uložiť ako BMP", "Uložiť všetko (BMP)", "Uložiť patch VKP", "Porovnať font..", "Zmeniť veľkosť fontu..", "Kopírovať do schránky", "Zahodiť patch",
            "Korvatek, editor obrázkov a fontov pre fullflash E71 a EL71", "Zdrojové kódy a aktualizácie: pozrite domovskú stránku projektu", "Osobitné poďakovanie:", "všetkým, ktorí zmapovali tabuľky obrázkov a fontov E71 a EL71", "všetkým testerom a výskumníkom",
            "Obrázky", "Fonty", "Font",
            "Možnosti", "view", "other",
            "Ruština", "Angličtina", "Slovenčina", "Portugalčina", "Poľština",
            "Priradiť k *.gpf", "Priradiť k *.gpf2", "Zobrazovať správu o úspechu", "Show replacing to 1x1",
            "OK", "Zrušiť", "Použiť", "Predvolené",
        },
    };
    return texts;
}

}  // namespace korvatek::settings
