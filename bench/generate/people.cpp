#include "bench/generate/people.h"

#include <array>
#include <cstdio>
#include <span>

namespace bench {
namespace {

using Words = std::span<const std::string_view>;

constexpr std::string_view kLatinHeads[] = {"Müll", "Lind",  "Øster", "Garcí", "Dvoř", "Nov",   "Hämm",
                                            "Berg", "Schmi", "Laur",  "O’Bri", "Fern", "Kowal", "Szcz",
                                            "Petr", "Ång",   "Bjørn", "Sánch", "Lef",  "Rossi", "Moreau",
                                            "Håk",  "Jóns",  "Čap",   "Ğün",   "Ştef", "Zieg",  "Walt"};
constexpr std::string_view kLatinTails[] = {
    "er", "ström", "gaard", "ez",     "ák", "otny", "mann", "man",  "tson", "ini",  "ova",  "enko", "ski",
    "ić", "eira",  "sson",  "dóttir", "ek", "oğlu", "escu", "feld", "haus", "bach", "roth", "wald"};
constexpr std::string_view kLatinFirsts[] = {"Anna",   "Zoë",     "Björn", "Chloé", "Diego",  "Élodie",
                                             "Fiona",  "Günther", "Hanna", "Inés",  "Jürgen", "Kateřina",
                                             "Łukasz", "María",   "Noël",  "Óscar", "Peter",  "Søren",
                                             "Tomáš",  "Ursula",  "Yağmur"};
constexpr std::string_view kCyrillicHeads[] = {"Иван", "Петр",  "Сидор", "Кузнец", "Смирн",
                                               "Волк", "Лебед", "Козл",  "Новик",  "Мороз"};
constexpr std::string_view kCyrillicTails[] = {"ов",   "ова", "ев",  "ева", "енко",
                                               "ский", "ин",  "ина", "чук", "ук"};
constexpr std::string_view kCyrillicFirsts[] = {"Анна", "Борис", "Фёдор", "Ольга", "Сергей", "Юлия"};
constexpr std::string_view kGreekHeads[] = {"Παπαδ", "Γεωργ", "Νικολ", "Δημητρ", "Κωνσταντ",
                                            "Αθαν",  "Χριστ", "Βασιλ", "Μιχαλ",  "Ιωανν"};
constexpr std::string_view kGreekTails[] = {"όπουλος", "ίου", "άκης", "ίδης", "άτος"};
constexpr std::string_view kGreekFirsts[] = {"Ελένη", "Γιώργος", "Μαρία", "Νίκος"};
constexpr std::string_view kHanHeads[] = {"王", "李", "張", "劉", "陳", "楊", "趙", "黃", "周", "吳"};
constexpr std::string_view kHanTails[] = {"氏", "本", "田", "山", "川"};
constexpr std::string_view kHanFirsts[] = {"偉", "芳", "秀英", "敏", "静"};
constexpr std::string_view kArabicHeads[] = {"حسن",  "علي",  "خالد", "يوسف", "عمر",
                                             "سالم", "ناصر", "كريم", "سعيد", "فهد"};
constexpr std::string_view kArabicTails[] = {"ي", "اوي", "ان", "ين", "ون"};
constexpr std::string_view kArabicFirsts[] = {"محمد", "فاطمة", "أحمد", "ليلى"};
constexpr std::string_view kHangulHeads[] = {"김", "이", "박", "최", "정", "강", "조", "윤", "장", "임"};
constexpr std::string_view kHangulTails[] = {"가", "나", "다", "라", "마"};
constexpr std::string_view kHangulFirsts[] = {"민준", "서연", "지우", "하은"};

// The names in one script. Last names are all combinations of head and tail.
struct Script {
    Words heads, tails, firsts;
    std::size_t names() const { return heads.size() * tails.size(); }
};
const std::array<Script, 6> kScripts{{{kLatinHeads, kLatinTails, kLatinFirsts},
                                      {kCyrillicHeads, kCyrillicTails, kCyrillicFirsts},
                                      {kGreekHeads, kGreekTails, kGreekFirsts},
                                      {kHanHeads, kHanTails, kHanFirsts},
                                      {kArabicHeads, kArabicTails, kArabicFirsts},
                                      {kHangulHeads, kHangulTails, kHangulFirsts}}};
constexpr std::size_t kLastNames = 1'000;
static_assert(std::size(kLatinHeads) * std::size(kLatinTails) == 700);

constexpr std::string_view kCities[] = {
    "Zürich",  "Berlin",   "København", "Göteborg",  "São Paulo", "Kraków", "Łódź",    "Brno",    "İzmir",
    "Αθήνα",   "Москва",   "Київ",      "東京",      "大阪",      "北京",   "서울",    "القاهرة", "Málaga",
    "Orléans", "Genève",   "Tromsø",    "Reykjavík", "Liège",     "Torino", "Porto",   "Dublin",  "Glasgow",
    "Boston",  "Chicago",  "Denver",    "Toronto",   "Montréal",  "Lima",   "Bogotá",  "Quito",   "Santiago",
    "Perth",   "Auckland", "Osaka",     "Pune",      "Chennai",   "Lagos",  "Nairobi", "Accra",   "Tunis",
    "Beirut",  "Ankara",   "Sofia",     "Bucureşti", "Riga"};
constexpr std::string_view kWords[] = {
    "garden",  "piano",   "met",    "in",        "spring",  "calls",   "after",   "lunch",
    "likes",   "tea",     "coffee", "über",      "Straße",  "café",    "déjà",    "niño",
    "señora",  "brother", "of",     "neighbour", "and",     "sailing", "chess",   "Ärztin",
    "school",  "train",   "moved",  "from",      "harbour", "market",  "prefers", "mail",
    "never",   "before",  "nine",   "office",    "third",   "floor",   "key",     "under",
    "the",     "stone",   "book",   "lent",      "back",    "until",   "winter",  "рыба",
    "дом",     "σπίτι",   "花",     "친구",      "كتاب",    "violin",  "choir",   "tenor",
    "soprano", "concert", "ticket", "paid",      "twice",   "ask",     "about",   "dog"};
constexpr std::string_view kCompanies[] = {"Harbour Clinic", "Nordlicht GmbH", "Café Olé", "Ateliers Réunis",
                                           "Blue Kite",      "Söderberg AB",   "花店",     "Дом книги"};
constexpr std::string_view kJobs[] = {"Surgeon", "Teacher", "Pilot", "Bäckerin", "Engineer"};
constexpr std::string_view kDialCodes[] = {"+41", "+49", "+45", "+46", "+55",
                                           "+48", "+30", "+81", "+44", "+1"};
constexpr std::string_view kCountryCodes[] = {"ch", "de", "dk", "se", "br", "pl", "gr", "jp", "gb", "us"};
constexpr std::string_view kCountries[] = {"Schweiz", "Deutschland", "Danmark", "Sverige", "Brasil",
                                           "Polska",  "Ελλάδα",      "日本",    "Britain", "USA"};

// A generator of pseudo-random numbers (splitmix64).
class Random {
  public:
    explicit Random(std::uint64_t seed) : state_(seed) {}
    std::uint64_t next() {
        std::uint64_t z = state_ += 0x9E3779B97F4A7C15;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EB;
        return z ^ (z >> 31);
    }
    std::size_t below(std::size_t limit) { return static_cast<std::size_t>(next() % limit); }
    std::string_view of(Words words) { return words[below(words.size())]; }
    std::string digits(int count) {
        std::string text;
        while (count-- > 0) {
            text.push_back(static_cast<char>('0' + below(10)));
        }
        return text;
    }

  private:
    std::uint64_t state_;
};

Random randomFor(std::uint64_t stream, std::size_t place) {
    return Random(Random(kSeed + stream).next() ^ (place * 0xD1342543DE82EF95));
}

std::string uuid(Random random) {
    const std::uint64_t high = random.next();
    const std::uint64_t low = random.next();
    char text[37];
    std::snprintf(text, sizeof text, "%08X-%04X-4%03X-%04X-%012llX", static_cast<unsigned>(high >> 32),
                  static_cast<unsigned>(high >> 16 & 0xFFFF), static_cast<unsigned>(high & 0xFFF),
                  static_cast<unsigned>((low >> 48 & 0x3FFF) | 0x8000),
                  static_cast<unsigned long long>(low & 0xFFFFFFFFFFFF));
    return text;
}

void takeName(Person& person, Random& random) {
    std::size_t name = random.below(kLastNames);
    for (const Script& script : kScripts) {
        if (name < script.names()) {
            person.last = script.heads[name / script.tails.size()];
            person.last += script.tails[name % script.tails.size()];
            person.first = random.of(script.firsts);
            return;
        }
        name -= script.names();
    }
}

std::string phoneNumber(Random& random, std::size_t country) {
    std::string number(kDialCodes[country]);
    number += " " + std::to_string(10 + random.below(90)) + " ";
    number += random.digits(3) + " ";
    number += random.digits(2) + " ";
    return number + random.digits(2);
}

} // namespace

std::string personUid(std::size_t place) {
    return uuid(randomFor(1, place)) + ":ABPerson";
}

Person person(std::size_t place) {
    Random random = randomFor(0, place);
    Person person;
    person.uid = personUid(place);
    takeName(person, random);
    person.organization = random.of(kCompanies);
    person.jobTitle = random.of(kJobs);
    const std::size_t country = random.below(std::size(kCountries));
    person.phones = {{"_$!<Mobile>!$_", phoneNumber(random, country)},
                     {random.below(2) == 0 ? "_$!<Home>!$_" : "_$!<Work>!$_", phoneNumber(random, country)}};
    person.email = {"_$!<Work>!$_",
                    "p" + std::to_string(place) + (random.below(2) == 0 ? "@example.org" : "@example.com")};
    person.address = {"_$!<Home>!$_",
                      std::string(random.of(kWords)) + " " + std::to_string(1 + random.below(200)),
                      std::string(random.of(kCities)),
                      random.digits(5),
                      std::string(kCountries[country]),
                      std::string(kCountryCodes[country])};
    person.birthday = -86400.0 * static_cast<double>(random.below(30'000)) + 43200;
    for (std::size_t words = 4 + random.below(9); words > 0; --words) {
        person.note += random.of(kWords);
        if (words > 1) {
            person.note += ' ';
        }
    }
    if (random.below(20) == 0) {
        for (std::size_t i = 0; i < kPictureBytes; i += 8) {
            for (std::uint64_t bits = random.next(), byte = 0; byte < 8; ++byte) {
                person.picture.push_back(static_cast<std::uint8_t>(bits >> 8 * byte));
            }
        }
    }
    return person;
}

std::string groupName(std::size_t group) {
    return "Group " + std::to_string(group + 1);
}

std::string groupUid(std::size_t group) {
    return uuid(randomFor(2, group)) + ":ABGroup";
}

std::vector<std::size_t> membersOf(std::size_t group, std::size_t people) {
    std::vector<std::size_t> members;
    const bool all = group == kEverybody;
    for (std::size_t place = all ? 0 : group; place < people; place += all ? 1 : 2 * kGroups) {
        members.push_back(place);
    }
    return members;
}

} // namespace bench
