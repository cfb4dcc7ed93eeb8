#include "jobs/dswc/dswc_address_book.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "util/line_reader.h"
#include "util/strings.h"
#include "util/tokenizer.h"

namespace {

constexpr const char* kAddressBookFile = "./AddressBook.txt";
constexpr std::size_t kMaxLine = 511;
// Contacts are filed under this address book type.
constexpr int kContactType = 17;

enum Column {
  kLastPart,
  kFirstPart,
  kMiddlePart,
  kPostalAddress,
  kPhoneA,
  kPhoneB,
  kPhoneC,
  kEmail,
  kBirthday,
  kColumnCount
};

constexpr Column kPhoneColumns[] = {kPhoneA, kPhoneB, kPhoneC};

// Which field a phone's kind marker sends it to; tested in this order.
struct PhoneKind {
  const char* marker;
  Text<32> AddressBookEntry::*field;
};

constexpr PhoneKind kPhoneKinds[] = {
    {" (Cell)", &AddressBookEntry::phone1},
    {" (Home)", &AddressBookEntry::phone2},
    {" (Text)", &AddressBookEntry::phone1},
    {" (Work)", &AddressBookEntry::phone3},
};

// "first middle last"; a missing part leaves out its text but not its blank.
void FillContactName(char* const* field, Text<32>& contact_name) {
  std::string name;
  if (field[kFirstPart] != nullptr) name = field[kFirstPart];
  if (field[kMiddlePart] != nullptr) {
    name += ' ';
    name += field[kMiddlePart];
  }
  if (field[kLastPart] != nullptr) {
    name += ' ';
    name += field[kLastPart];
  }
  contact_name = name;
}

// Reads a number the way "%d" does: white space, a sign, at least one digit.
// Returns false when there is no digit; `end` is where reading stopped.
bool ReadNumber(const char* text, int& value, const char*& end) {
  char* stop = nullptr;
  errno = 0;
  long number = std::strtol(text, &stop, 10);
  if (stop == text) return false;
  if (errno == ERANGE || number > INT_MAX || number < INT_MIN) number = number < 0 ? INT_MIN : INT_MAX;
  value = static_cast<int>(number);
  end = stop;
  return true;
}

// Returns true when the contact was stored.
bool ImportContact(char* const* field) {
  AddressBookEntry entry{};
  entry.country = "USA";
  entry.county = "NA";
  entry.type = kContactType;

  FillContactName(field, entry.contactName);
  ParseDswcAddress(field[kPostalAddress], entry);
  DropLeadingSpace(entry.city.data());
  for (Column column : kPhoneColumns) {
    if (ParseDswcPhone(field[column], entry) != 0) {
      std::printf("ERROR: invalid phone number: '%s'\n", field[column]);
      return false;
    }
  }
  if (field[kEmail] != nullptr) entry.email = field[kEmail];
  ParseDswcBirthday(field[kBirthday], entry.dob);

  if (InsertAddressBookEntry(entry) != 0) {
    std::printf("ERROR: Unable to insert rcord for  '%s'\n", entry.contactName.c_str());
    return false;
  }
  return true;
}

}  // namespace

void ParseDswcAddress(const char* address, AddressBookEntry& entry) {
  if (address == nullptr) return;
  Tokenizer parts(address);
  if (const char* street = parts.Next(",")) entry.addr = street;
  if (const char* city = parts.Next(",")) entry.city = city;
  if (const char* state = parts.Next(", ")) entry.state = state;
  if (const char* zip = parts.Next(" ")) entry.zip = zip;
}

int ParseDswcPhone(const char* phone, AddressBookEntry& entry) {
  if (phone == nullptr || std::strcmp(phone, " ") == 0) return 0;
  for (const PhoneKind& kind : kPhoneKinds) {
    const char* marker = std::strstr(phone, kind.marker);
    if (marker == nullptr) continue;
    Text<32>& field = entry.*kind.field;
    field = std::string_view(phone, static_cast<std::size_t>(marker - phone));
    DropLeadingSpace(field.data());
    return 0;
  }
  return 1;
}

void ParseDswcBirthday(const char* birthday, Text<11>& dob) {
  if (birthday == nullptr) return;
  int month = 0;
  int day = 0;
  const char* rest = nullptr;
  if (!ReadNumber(birthday, month, rest) || *rest != '/') return;
  if (!ReadNumber(rest + 1, day, rest)) return;
  if (month > 0 && day > 0) dob.Format("0000-%2.2d-%2.2d", month, day);
}

int ImportDswcAddressBook() {
  std::printf("Loading address book data from '%s'\n", kAddressBookFile);
  LineReader reader(kAddressBookFile, kMaxLine);
  if (!reader.CanRead()) {
    std::printf("Unable to open '%s'\n", kAddressBookFile);
    return 1;
  }
  int imported = 0;
  std::string text;
  reader.ReadLine(text);  // header
  while (reader.ReadLine(text)) {
    if (IsEmptyLine(text)) continue;  // an empty line holds no contact; any other goes through
    // Fields end at tabs only, so whichever column is last on the line keeps
    // the line feed, as the centre's old import stored it. Every column after
    // the last part of the name may be missing.
    Tokenizer tokenizer(text);
    char* field[kColumnCount];
    TakeFields(tokenizer, field, kColumnCount, "\t", "\t");
    if (ImportContact(field)) ++imported;
  }
  std::printf("Imported %d entries\n", imported);
  return 0;
}
