#include "training/corpus/ForeignTexts.h"

#include <array>
#include <stdexcept>

namespace veral3::training {
namespace {

constexpr auto kCatalan = std::to_array<std::string_view>(
    {"casa",      "taula",    "cadira",  "finestra", "porta",     "carrer",    "ciutat",
     "muntanya",  "platja",   "vaixell", "camí",     "bosc",      "arbre",     "flor",
     "fulla",     "herba",    "pedra",   "aigua",    "foc",       "terra",     "cel",
     "núvol",     "pluja",    "vent",    "neu",      "sol",       "lluna",     "estrella",
     "dia",       "nit",      "matí",    "tarda",    "vespre",    "setmana",   "mes",
     "any",       "hivern",   "estiu",   "tardor",   "primavera", "pare",      "mare",
     "germà",     "germana",  "fill",    "filla",    "avi",       "àvia",      "amic",
     "amiga",     "veí",      "metge",   "mestre",   "cuiner",    "pagès",     "pescador",
     "sabater",   "fuster",   "pa",      "vi",       "oli",       "sal",       "sucre",
     "llet",      "formatge", "ou",      "peix",     "carn",      "pollastre", "arròs",
     "poma",      "pera",     "taronja", "raïm",     "préssec",   "maduixa",   "ceba",
     "all",       "tomàquet", "patata",  "enciam",   "col",       "llibre",    "paper",
     "carta",     "ploma",    "quadern", "escola",   "cuina",     "menjador",  "cambra",
     "llit",      "armari",   "clau",    "rellotge", "mirall",    "roba",      "camisa",
     "pantalons", "sabata",   "barret",  "abric",    "groc",      "verd",      "blau",
     "vermell",   "negre",    "blanc",   "gris",     "gran",      "petit",     "alt",
     "baix",      "llarg",    "curt",    "ample",    "estret",    "vell",      "jove",
     "nou",       "ràpid",    "lent",    "dolç",     "amarg",     "fred",      "calent",
     "fosc",      "clar",     "cantar",  "ballar",   "córrer",    "caminar",   "saltar",
     "nedar",     "dormir",   "menjar",  "beure",    "parlar",    "escriure",  "llegir",
     "comprar",   "vendre",   "obrir",   "tancar",   "trobar",    "buscar",    "un",
     "dos",       "tres",     "quatre",  "cinc",     "sis",       "set",       "vuit",
     "deu",       "vint",     "cent",    "mil",      "gat",       "gos",       "cavall",
     "vaca",      "ovella",   "porc",    "gallina",  "ocell",     "abella",    "formiga",
     "aranya",    "guitarra", "piano",   "tambor",   "xocolata",  "xarxa",     "joc",
     "jardí",     "gener",    "juliol",  "desembre", "ahir",      "avui",      "demà",
     "sempre",    "mai",      "també",   "però",     "perquè",    "molt",      "poc",
     "massa",     "gairebé",  "tren",    "cotxe",    "bicicleta", "avió",      "pont",
     "plaça",     "mercat",   "botiga",  "església", "castell"});

constexpr auto kCzech = std::to_array<std::string_view>(
    {"dům",      "stůl",     "židle",   "okno",     "dveře",   "ulice",   "město",    "hora",
     "řeka",     "moře",     "loď",     "cesta",    "les",     "strom",   "květ",     "list",
     "tráva",    "kámen",    "voda",    "oheň",     "země",    "nebe",    "mrak",     "déšť",
     "vítr",     "sníh",     "slunce",  "měsíc",    "hvězda",  "den",     "noc",      "ráno",
     "večer",    "týden",    "rok",     "zima",     "léto",    "podzim",  "jaro",     "otec",
     "matka",    "bratr",    "sestra",  "syn",      "dcera",   "děda",    "babička",  "přítel",
     "soused",   "lékař",    "učitel",  "kuchař",   "sedlák",  "rybář",   "švec",     "tesař",
     "chléb",    "víno",     "olej",    "sůl",      "cukr",    "mléko",   "sýr",      "vejce",
     "ryba",     "maso",     "kuře",    "rýže",     "jablko",  "hruška",  "pomeranč", "hrozny",
     "broskev",  "jahoda",   "cibule",  "česnek",   "rajče",   "brambor", "salát",    "zelí",
     "kniha",    "papír",    "dopis",   "pero",     "sešit",   "škola",   "kuchyně",  "jídelna",
     "pokoj",    "postel",   "skříň",   "klíč",     "hodiny",  "zrcadlo", "šaty",     "košile",
     "kalhoty",  "bota",     "klobouk", "kabát",    "žlutý",   "zelený",  "modrý",    "červený",
     "černý",    "bílý",     "šedý",    "velký",    "malý",    "vysoký",  "nízký",    "dlouhý",
     "krátký",   "široký",   "úzký",    "starý",    "mladý",   "nový",    "rychlý",   "pomalý",
     "sladký",   "hořký",    "studený", "teplý",    "tmavý",   "jasný",   "zpívat",   "tančit",
     "běžet",    "chodit",   "skákat",  "plavat",   "spát",    "jíst",    "pít",      "mluvit",
     "psát",     "číst",     "koupit",  "prodat",   "otevřít", "zavřít",  "najít",    "hledat",
     "jeden",    "dva",      "tři",     "čtyři",    "pět",     "šest",    "sedm",     "osm",
     "devět",    "deset",    "dvacet",  "sto",      "tisíc",   "kočka",   "pes",      "kůň",
     "kráva",    "ovce",     "prase",   "slepice",  "pták",    "včela",   "mravenec", "pavouk",
     "kytara",   "klavír",   "buben",   "čokoláda", "síť",     "hra",     "zahrada",  "leden",
     "červenec", "prosinec", "včera",   "dnes",     "zítra",   "vždy",    "nikdy",    "také",
     "ale",      "protože",  "mnoho",   "málo",     "džbán",   "džus",    "žába",     "žhavý",
     "hudba",    "chata",    "chyba",   "hlava",    "had",     "banka",   "tango",    "vlak",
     "auto",     "kolo",     "letadlo", "most",     "náměstí", "trh",     "obchod",   "kostel",
     "zámek",    "máma",     "táta",    "líný",     "kůra",    "móda",    "tón",      "móla",
     "gól",      "fíla",     "éra",     "téma",     "béžový",  "fazole",  "fotka",    "film",
     "fialka",   "golf",     "guma",    "garáž"});

constexpr auto kFinnish = std::to_array<std::string_view>(
    {"talo",        "pöytä",     "tuoli",    "ikkuna",   "ovi",           "katu",      "kaupunki",
     "vuori",       "joki",      "meri",     "laiva",    "tie",           "metsä",     "puu",
     "kukka",       "lehti",     "ruoho",    "kivi",     "vesi",          "tuli",      "maa",
     "taivas",      "pilvi",     "sade",     "tuuli",    "lumi",          "aurinko",   "kuu",
     "tähti",       "päivä",     "yö",       "aamu",     "ilta",          "viikko",    "kuukausi",
     "vuosi",       "talvi",     "kesä",     "syksy",    "kevät",         "isä",       "äiti",
     "veli",        "sisko",     "poika",    "tyttö",    "vaari",         "mummo",     "ystävä",
     "naapuri",     "lääkäri",   "opettaja", "kokki",    "maanviljelijä", "kalastaja", "suutari",
     "leipä",       "viini",     "öljy",     "suola",    "sokeri",        "maito",     "juusto",
     "muna",        "kala",      "liha",     "kana",     "riisi",         "omena",     "päärynä",
     "appelsiini",  "rypäle",    "persikka", "mansikka", "sipuli",        "tomaatti",  "peruna",
     "salaatti",    "kaali",     "kirja",    "paperi",   "kirje",         "kynä",      "vihko",
     "koulu",       "keittiö",   "huone",    "sänky",    "kaappi",        "avain",     "kello",
     "peili",       "vaate",     "paita",    "housut",   "kenkä",         "hattu",     "takki",
     "keltainen",   "vihreä",    "sininen",  "punainen", "musta",         "valkoinen", "harmaa",
     "suuri",       "pieni",     "korkea",   "matala",   "pitkä",         "lyhyt",     "leveä",
     "kapea",       "vanha",     "nuori",    "uusi",     "nopea",         "hidas",     "makea",
     "kylmä",       "lämmin",    "tumma",    "kirkas",   "laulaa",        "tanssia",   "juosta",
     "kävellä",     "hypätä",    "uida",     "nukkua",   "syödä",         "juoda",     "puhua",
     "kirjoittaa",  "lukea",     "ostaa",    "myydä",    "avata",         "sulkea",    "löytää",
     "etsiä",       "yksi",      "kaksi",    "kolme",    "neljä",         "viisi",     "kuusi",
     "seitsemän",   "kahdeksan", "yhdeksän", "kymmenen", "sata",          "tuhat",     "kissa",
     "koira",       "hevonen",   "lehmä",    "lammas",   "sika",          "lintu",     "mehiläinen",
     "muurahainen", "hämähäkki", "kitara",   "piano",    "rumpu",         "suklaa",    "verkko",
     "peli",        "puutarha",  "tammikuu", "heinäkuu", "joulukuu",      "eilen",     "tänään",
     "huomenna",    "aina",      "koskaan",  "myös",     "mutta",         "koska",     "paljon",
     "vähän",       "juna",      "auto",     "pyörä",    "lentokone",     "silta",     "tori",
     "kauppa",      "kirkko",    "linna",    "kuppi",    "pappi",         "tukka",     "matto",
     "latu",        "hattara",   "kukko",    "kengät",   "langat",        "rengas",    "hanki",
     "tunnelma",    "kammo",     "lumme",    "hetki",    "kahvi",         "tee",       "pää",
     "jää",         "pii",       "tai",      "hiihtää",  "liike",         "tuuma",     "tupa",
     "pata",        "napa",      "tapa",     "kapa",     "täti",          "käki",      "päkä",
     "idea",        "radio",     "pida",     "hyvä",     "byrokratia"});

constexpr auto kItalian = std::to_array<std::string_view>(
    {"casa",      "tavola",    "sedia",    "finestra", "porta",     "strada",     "città",
     "montagna",  "fiume",     "mare",     "nave",     "cammino",   "bosco",      "albero",
     "fiore",     "foglia",    "erba",     "pietra",   "acqua",     "fuoco",      "terra",
     "cielo",     "nuvola",    "pioggia",  "vento",    "neve",      "sole",       "luna",
     "stella",    "giorno",    "notte",    "mattina",  "sera",      "settimana",  "mese",
     "anno",      "inverno",   "estate",   "autunno",  "primavera", "padre",      "madre",
     "fratello",  "sorella",   "figlio",   "figlia",   "nonno",     "nonna",      "amico",
     "amica",     "vicino",    "medico",   "maestro",  "cuoco",     "contadino",  "pescatore",
     "calzolaio", "falegname", "pane",     "vino",     "olio",      "sale",       "zucchero",
     "latte",     "formaggio", "uovo",     "pesce",    "carne",     "pollo",      "riso",
     "mela",      "pera",      "arancia",  "uva",      "pesca",     "fragola",    "cipolla",
     "aglio",     "pomodoro",  "patata",   "insalata", "cavolo",    "libro",      "carta",
     "lettera",   "penna",     "quaderno", "scuola",   "cucina",    "sala",       "camera",
     "letto",     "armadio",   "chiave",   "orologio", "specchio",  "vestito",    "camicia",
     "pantaloni", "scarpa",    "cappello", "cappotto", "giallo",    "verde",      "blu",
     "rosso",     "nero",      "bianco",   "grigio",   "grande",    "piccolo",    "alto",
     "basso",     "lungo",     "corto",    "largo",    "stretto",   "vecchio",    "giovane",
     "nuovo",     "rapido",    "lento",    "dolce",    "amaro",     "freddo",     "caldo",
     "scuro",     "chiaro",    "cantare",  "ballare",  "correre",   "camminare",  "saltare",
     "nuotare",   "dormire",   "mangiare", "bere",     "parlare",   "scrivere",   "leggere",
     "comprare",  "vendere",   "aprire",   "chiudere", "trovare",   "cercare",    "uno",
     "due",       "tre",       "quattro",  "cinque",   "sei",       "sette",      "otto",
     "nove",      "dieci",     "venti",    "cento",    "mille",     "gatto",      "cane",
     "cavallo",   "mucca",     "pecora",   "maiale",   "gallina",   "uccello",    "ape",
     "formica",   "ragno",     "chitarra", "piano",    "tamburo",   "cioccolata", "rete",
     "gioco",     "giardino",  "gennaio",  "luglio",   "dicembre",  "ieri",       "oggi",
     "domani",    "sempre",    "mai",      "anche",    "ma",        "quando",     "molto",
     "poco",      "troppo",    "quasi",    "treno",    "macchina",  "bicicletta", "aereo",
     "ponte",     "piazza",    "mercato",  "negozio",  "chiesa",    "castello",   "sasso",
     "posso",     "rosa",      "zaino",    "pizza",    "ragazza",   "ghiaccio",   "gnocchi",
     "scena",     "sciarpa",   "pesci",    "lasciare", "uscire",    "guerra",     "quadro",
     "uomo",      "buono",     "cuore",    "piede",    "fieno",     "banco",      "lingua",
     "fungo",     "tango",     "vengo",    "invito",   "inferno",   "ansia",      "pensare"});

constexpr auto kRussian = std::to_array<std::string_view>(
    {"дом",     "стол",     "стул",    "окно",      "дверь",   "улица",    "город",     "гора",
     "река",    "море",     "лодка",   "дорога",    "лес",     "дерево",   "цветок",    "лист",
     "трава",   "камень",   "вода",    "огонь",     "земля",   "небо",     "туча",      "дождь",
     "ветер",   "снег",     "солнце",  "луна",      "звезда",  "день",     "ночь",      "утро",
     "вечер",   "неделя",   "месяц",   "год",       "зима",    "лето",     "осень",     "весна",
     "отец",    "мать",     "брат",    "сестра",    "сын",     "дочь",     "дедушка",   "бабушка",
     "друг",    "сосед",    "врач",    "учитель",   "повар",   "рыбак",    "сапожник",  "плотник",
     "хлеб",    "вино",     "масло",   "соль",      "сахар",   "молоко",   "сыр",       "яйцо",
     "рыба",    "мясо",     "курица",  "рис",       "яблоко",  "груша",    "апельсин",  "виноград",
     "персик",  "клубника", "лук",     "чеснок",    "помидор", "картошка", "салат",     "капуста",
     "книга",   "бумага",   "письмо",  "ручка",     "тетрадь", "школа",    "кухня",     "комната",
     "кровать", "шкаф",     "ключ",    "часы",      "зеркало", "платье",   "рубашка",   "брюки",
     "ботинок", "шляпа",    "пальто",  "жёлтый",    "зелёный", "синий",    "красный",   "чёрный",
     "белый",   "серый",    "большой", "маленький", "высокий", "низкий",   "длинный",   "короткий",
     "широкий", "узкий",    "старый",  "молодой",   "новый",   "быстрый",  "медленный", "сладкий",
     "горький", "холодный", "тёплый",  "тёмный",    "ясный",   "петь",     "танцевать", "бежать",
     "ходить",  "прыгать",  "плавать", "спать",     "есть",    "пить",     "говорить",  "писать",
     "читать",  "купить",   "продать", "открыть",   "закрыть", "найти",    "искать",    "один",
     "два",     "три",      "четыре",  "пять",      "шесть",   "семь",     "восемь",    "девять",
     "десять",  "двадцать", "сто",     "тысяча",    "кошка",   "собака",   "лошадь",    "корова",
     "овца",    "свинья",   "птица",   "пчела",     "муравей", "паук",     "гитара",    "пианино",
     "барабан", "шоколад",  "сеть",    "игра",      "сад",     "январь",   "июль",      "декабрь",
     "вчера",   "сегодня",  "завтра",  "всегда",    "никогда", "также",    "потому",    "много",
     "мало",    "поезд",    "машина",  "велосипед", "самолёт", "мост",     "площадь",   "рынок",
     "магазин", "церковь",  "замок",   "щека",      "щука",    "площадка", "борщ",      "щётка",
     "плащ",    "овощи",    "чашка",   "чай",       "час",     "чудо",     "мяч",       "ключи",
     "цирк",    "цена",     "цапля",   "центр",     "хор",     "храм",     "холод",     "ухо",
     "муха",    "хитрый",   "фонарь",  "фабрика",   "шум",     "шапка",    "душа",      "жук",
     "жаба",    "ваза",     "зал",     "зуб",       "коза",    "пол",      "пар",       "банка",
     "губа",    "дача",     "тайна",   "май",       "край"});

constexpr auto kTelugu = std::to_array<std::string_view>(
    {"ఇల్లు",    "బల్ల",     "కుర్చీ",   "కిటికీ",    "తలుపు",  "వీధి",     "నగరం",  "కొండ",    "నది",
     "సముద్రం",  "పడవ",     "దారి",     "అడవి",    "చెట్టు",   "పువ్వు",  "ఆకు",   "గడ్డి",    "రాయి",
     "నీరు",     "నిప్పు",    "భూమి",    "ఆకాశం",   "మేఘం",    "వాన",     "గాలి",    "మంచు",   "సూర్యుడు",
     "చంద్రుడు", "నక్షత్రం",  "పగలు",   "రాత్రి",    "ఉదయం",   "సాయంత్రం", "వారం",   "నెల",     "సంవత్సరం",
     "తండ్రి",    "తల్లి",     "అన్న",    "అక్క",    "తమ్ముడు", "చెల్లి",    "కొడుకు", "కూతురు", "తాత",
     "అమ్మమ్మ",   "స్నేహితుడు", "వైద్యుడు", "గురువు", "రైతు",    "అన్నం",   "నూనె",   "ఉప్పు",   "పాలు",
     "పెరుగు",   "గుడ్డు",   "చేప",     "మాంసం",   "కోడి",     "మామిడి",    "అరటి",   "నిమ్మ",    "ద్రాక్ష",
     "ఉల్లి",     "వెల్లుల్లి",  "టమాట",    "వంకాయ",   "పుస్తకం", "కాగితం",   "ఉత్తరం", "కలం",    "బడి",
     "వంటిల్లు",  "గది",      "మంచం",   "తాళం",    "గడియారం",  "అద్దం",   "బట్టలు", "చొక్కా",    "చెప్పులు",
     "టోపీ",      "పసుపు",   "పచ్చ",    "నీలం",    "ఎరుపు",  "నలుపు",  "తెలుపు", "పెద్ద",    "చిన్న",
     "ఎత్తు",    "పొడవు",    "పొట్టి",    "వెడల్పు",  "పాత",     "కొత్త",    "వేగం",   "నెమ్మది",   "తీపి",
     "చేదు",     "చలి",      "వేడి",     "చీకటి",    "వెలుగు",  "పాడు",    "ఆడు",   "నడుచు",  "దూకు",
     "ఈదు",     "నిద్ర",     "తిను",    "తాగు",    "మాట్లాడు",  "రాయు",    "చదువు", "కొను",    "అమ్ము",
     "తెరువు",   "మూయు",    "వెతుకు",  "ఒకటి",    "రెండు",   "మూడు",   "నాలుగు", "ఐదు",    "ఆరు",
     "ఏడు",     "ఎనిమిది",    "తొమ్మిది",   "పది",     "వంద",    "వెయ్యి",    "పిల్లి",   "కుక్క",   "గుర్రం",
     "ఆవు",     "గొర్రె",     "పంది",    "పక్షి",    "తేనె",     "చీమ",     "సాలీడు",  "ఆట",     "తోట",
     "నిన్న",     "ఈరోజు",    "రేపు",    "ఎప్పుడూ", "కూడా",    "కానీ",     "చాలా",    "కొంచెం",   "రైలు",
     "కారు",     "విమానం",    "వంతెన",   "సంత",    "గుడి",    "కోట",     "సేవ",    "దేశం",    "సోమవారం",
     "ఐక్యం",    "మౌనం",     "కౌలు",    "పైన",     "కైక",     "సైకిలు",   "హారం",   "హనుమ",   "లేఖ",
     "లాభం",     "మీసం",     "కాలు",    "పాము",    "కాకి",     "పూలు",   "తేలు",   "గోడ",     "తోక",
     "మేక",      "సీత",      "గీత",     "యాత్ర",    "యువత",   "ఫలం",    "ఫోను"});

}  // namespace

std::span<const std::string_view> ForeignWords(ForeignLanguage language) {
  switch (language) {
    case ForeignLanguage::kCatalan:
      return kCatalan;
    case ForeignLanguage::kCzech:
      return kCzech;
    case ForeignLanguage::kFinnish:
      return kFinnish;
    case ForeignLanguage::kItalian:
      return kItalian;
    case ForeignLanguage::kRussian:
      return kRussian;
    case ForeignLanguage::kTelugu:
      return kTelugu;
  }
  throw std::runtime_error("no words of this language");
}

std::string DrawForeignText(ForeignLanguage language, Random& random) {
  const std::span<const std::string_view> words = ForeignWords(language);
  const int count = random.Chance(0.2) ? 1 : random.Between(2, 8);
  std::string text;
  for (int i = 0; i < count; ++i) {
    if (i > 0) text += i > 1 && random.Chance(0.12) ? ", " : " ";
    text += words[static_cast<std::size_t>(random.Between(0, static_cast<int>(words.size()) - 1))];
  }
  return text + ".";
}

}  // namespace veral3::training
