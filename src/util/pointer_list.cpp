#include "util/pointer_list.h"

#include "util/strings.h"

int PointerListGrowStep(int initial_capacity) {
  int step = initial_capacity / 10;
  return step >= 1 ? step : 1;
}

const std::string* PointerListFindText(const PointerList<std::string>& list, const char* text) {
  for (int i = 0; i < list.Count(); ++i) {
    const std::string* item = list.At(i);
    if (EqualsNoCase(item->c_str(), text)) return item;
  }
  return nullptr;
}
