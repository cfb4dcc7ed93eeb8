// Finding the CSAQ_FF patient whose notes end with a tag, for the
// measurement jobs: the patient that
//   select id from patient where notes like '%<tag>'
// (or, for a species, "... where species='<code>' and notes like '%<tag>'")
// picks, without having the server scan the patient table for every tag.
//
// The pattern starts with a wildcard, so no index serves it. Instead the
// ids and notes of every patient are read once and indexed by their notes,
// folded as the column's collation (latin1_swedish_ci) compares letters and
// read backwards, so the patients whose notes end with a tag are a range of
// the index. The server then confirms those candidates by key with the same
// LIKE and the first in key order is the answer: a scan of an InnoDB table
// (and a look-up through the species index, whose equal keys are kept in
// key order) returns the rows in key order. Tags the index cannot answer
// exactly (LIKE's wildcards `%` and `_`, the escape character `\`, a quote,
// an empty tag) are sent as the original statement.
#pragma once

#include <string>
#include <string_view>
#include <vector>

class NotesTagFinder {
 public:
  // The first patient, in key order, whose notes end with `tag` under the
  // notes column's comparison rules (letter case and the collation's
  // equivalent letters; trailing blanks count), of `species` when it is not
  // null. 0 when there is none or a statement fails. The first call reads
  // the patient table; patients inserted after it are not seen, which is
  // right for jobs that write only record entries.
  int Find(const char* species, std::string_view tag);

  // `text` folded as latin1_swedish_ci compares it: one byte per byte, equal
  // for two texts exactly when the collation's LIKE without wildcards finds
  // them equal.
  static std::string Fold(std::string_view text);

 private:
  struct Entry {
    std::string reversed;  // the folded notes, last byte first
    int id;
  };

  // Reads and sorts the index; on failure every look-up uses the original
  // statement.
  void Load();
  // The original statement.
  static int Scan(const char* species, std::string_view tag);
  // The first of `candidates` (ascending keys) that the server's LIKE
  // confirms; 0 when none does.
  static int Confirm(const char* species, std::string_view tag, const std::vector<int>& candidates);

  bool loaded_ = false;
  bool usable_ = false;
  std::vector<Entry> entries_;  // sorted by reversed notes, then key
  // Patients whose notes hold a zero byte: the text read back stops there,
  // so they are a candidate for every tag.
  std::vector<int> unread_;
};
