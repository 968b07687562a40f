// Polish.
#include "settings/message_table.h"

namespace korvatek::settings {

const LanguageTexts& LanguagePL() {
    static const LanguageTexts texts{
        5,
        "LanguagePL",
        {
            "Zakończono pomyślnie",
            "Ten obrazek został już zastąpiony. Uruchom ponownie program lub dokończ rozpoczętą łatkę",
            "Plik ",
            "Nowy obrazek jest większy niż obecny!",
            "Ten model telefonu nie jest obsługiwany: ",
            " już istnieje i zostanie zastąpiony",
            "Plik nie istnieje!",
            " nie został znaleziony i zostanie zastąpiony pustym obrazkiem",
            "Wybierz folder do zapisu plików",
            "Wybierz folder do otwarcia plików",
            "Maksymalny rozmiar obrazka to 240x320!",
            "Zapisać kanał alfa obrazka?",
            "Obrazki zajmują łącznie zbyt dużo miejsca!",
            "Ta wersja oprogramowania nie jest obsługiwana:",
            "Ten GPF nie jest obsługiwany! Prosimy o kontakt z autorem",
            "Wybierz plik ",
            "Nieznany plik!",
            "Podaj rozmiar od 6 do 64",
            "Możesz pracować tylko z czcionkami",
            "Stworzone dla społeczności modderów telefonów",
            "Proszę czekać około 3 sekund..",
            "nie znaleziono w katalogu programu!",
            "Tłumaczenie: zespół Korvatek",
            "Nie znaleziono wolnego miejsca w Fullflash!",
            // rows added later
            "Nie można otworzyć pliku ",
            "Nie można zapisać pliku ",
            "Ten plik jest za krótki na fullflash: ",
            "Dane obrazka wychodzą poza obszar 240x320!",
            "Przesunięcie danych obrazka wynosi 0, nie ma czego pokazać!",
            "Maksymalny rozmiar obrazka dla GPF to 255x255!",
            "Nie ma takiego obrazka na liście: ",
            "To nie jest 24- ani 32-bitowy BMP!",
            "Skompresowane pliki BMP nie są obsługiwane!",
            "To nie jest linia łatki V_Klay: ",
            "Stare bajty nie zgadzają się z fullflash pod adresem 0x",
            "Adres łatki poza końcem fullflash: 0x",
            "Kopia z łatką musi być nowym plikiem, nie samym fullflash!",
            "Łatka zgadza się z fullflash. Otworzyć teraz kopię z łatką?",
            "Ten znak nie mieści się w siatce 101x101!",
            "Nie można odczytać tabeli znaków tej czcionki: ",
            "Znaki tej czcionki leżą poza fullflash: ",
            "Przebudowana czcionka potrzebuje %1 bajtów, ale jej znaki mają miejsce tylko na %2 bajtów!",
            "Zmienione znaki: ",
            "Do przebudowanego znaku nie da się odwołać z tabeli czcionki: znak ",
            "Nie ma takiej czcionki: ",
            "Nie ma takiego znaku na liście: ",
        },
        {
            "Plik", "Otwórz", "Zakończ", "Narzędzia", "Porównaj GPF", "Lumbra (Korvatek) g.patch>GPF2", "Opcje", "O programie", "Sprawdź łatkę..",
            "Wczytaj GPF", "Wczytaj GPF z folderu", "Wczytaj BMP", "Wczytaj BMP z folderu", "Zapisz jako GPF", "Zapisz wszystkie (GPF)", "Zapisz jako BMP", "Zapisz wszystkie (BMP)", "Zapisz łatkę VKP", "Kopiuj do schowka", "Odrzuć łatkę",
            "Wczytaj BMP", "Wczytaj BMP z folderu", "Zapisz jako BMP", "Zapisz wszystkie (BMP)", "Zapisz łatkę VKP", "Porównaj czcionkę..", "Zmień rozmiar czcionki..", "Kopiuj do schowka", "Odrzuć łatkę",
            "Korvatek, edytor obrazków i czcionek dla fullflashy E71 i EL71", "Źródła i aktualizacje: zobacz stronę domową projektu", "Szczególne podziękowania dla:", "wszystkich, którzy rozpracowali tabele obrazków i czcionek E71 i EL71", "wszystkich testerów i badaczy",
            "Obrazki", "Czcionki", "Czcionka",
            "Opcje", "widok", "inne",
            "Rosyjski", "Angielski", "Słowacki", "Portugalski", "Polski",
            "Skojarz z *.gpf", "Skojarz z *.gpf2", "Pokazuj komunikat o powodzeniu", "Pokazuj zastąpienie obrazkiem 1x1",
            "OK", "Anuluj", "Zastosuj", "Domyślne",
        },
    };
    return texts;
}

}  // namespace korvatek::settings
