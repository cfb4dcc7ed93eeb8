#include "jobs/dswc/dswc_address_book.h"

int ImportDswcAddressBook() { return 0; }
