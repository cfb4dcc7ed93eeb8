// DsWC address book import (being written).
#pragma once

int ImportDswcAddressBook();
