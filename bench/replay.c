/* The floor a job's wall time is measured against: a minimal client that
 * sends a captured statement stream over one connection, one
 * mysql_real_query per statement, storing and freeing every result, and
 * nothing else.
 *
 *   replay HOST PORT USER PASSWORD DATABASE STREAM
 *
 * STREAM holds the statements in order, each as a header line "Q <bytes>"
 * (a query) or "D <bytes>" (a change of database: the replay selects
 * DATABASE instead of the name captured) followed by that many bytes and a
 * line end. The whole stream is read before connecting, so the timed part is
 * the connection and the round trips only. The connection talks latin1, as
 * the program does, so every byte reaches the server as the program sent it.
 *
 * Prints on stderr: statements sent, how many the server refused, and the
 * wall time from connecting to the last result. Exits 1 when the stream
 * cannot be read or the connection fails; refused statements do not change
 * the exit code (the job's own stream holds the ones its log reports). */
#include <mysql.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

struct statement {
  char kind;
  unsigned long length;
  char *text;
};

static double now_seconds(void) {
  struct timespec t;
  clock_gettime(CLOCK_MONOTONIC, &t);
  return (double)t.tv_sec + (double)t.tv_nsec / 1e9;
}

/* Reads the whole file into memory; returns NULL on failure. */
static char *read_file(const char *name, size_t *size) {
  FILE *file = fopen(name, "rb");
  if (file == NULL) return NULL;
  size_t capacity = 1 << 20, used = 0;
  char *data = malloc(capacity);
  while (data != NULL) {
    used += fread(data + used, 1, capacity - used, file);
    if (used < capacity) break;
    capacity *= 2;
    char *bigger = realloc(data, capacity);
    if (bigger == NULL) free(data);
    data = bigger;
  }
  int failed = ferror(file);
  fclose(file);
  if (failed) {
    free(data);
    return NULL;
  }
  *size = used;
  return data;
}

/* Cuts the stream into statements, pointing into `data`. Returns the count,
 * or -1 when the stream is malformed. */
static long parse_stream(char *data, size_t size, struct statement **out) {
  size_t capacity = 1024;
  long count = 0;
  struct statement *list = malloc(capacity * sizeof *list);
  size_t at = 0;
  while (list != NULL && at < size) {
    char kind = data[at];
    char *end = NULL;
    if ((kind != 'Q' && kind != 'D') || at + 2 >= size || data[at + 1] != ' ') break;
    unsigned long length = strtoul(data + at + 2, &end, 10);
    if (end == NULL || end >= data + size || *end != '\n') break;
    at = (size_t)(end - data) + 1;
    if (at + length + 1 > size || data[at + length] != '\n') break;
    if ((size_t)count == capacity) {
      capacity *= 2;
      struct statement *bigger = realloc(list, capacity * sizeof *list);
      if (bigger == NULL) break;
      list = bigger;
    }
    list[count].kind = kind;
    list[count].length = length;
    list[count].text = data + at;
    ++count;
    at += length + 1;
  }
  if (list == NULL || at != size) {
    free(list);
    return -1;
  }
  *out = list;
  return count;
}

int main(int argc, char **argv) {
  if (argc != 7) {
    fprintf(stderr, "usage: replay HOST PORT USER PASSWORD DATABASE STREAM\n");
    return 1;
  }
  const char *database = argv[5];
  size_t size = 0;
  char *data = read_file(argv[6], &size);
  struct statement *statements = NULL;
  long count = data == NULL ? -1 : parse_stream(data, size, &statements);
  if (count < 0) {
    fprintf(stderr, "replay: cannot read the statement stream %s\n", argv[6]);
    free(data);
    return 1;
  }

  double start = now_seconds();
  MYSQL *mysql = mysql_init(NULL);
  mysql_options(mysql, MYSQL_SET_CHARSET_NAME, "latin1");
  if (mysql_real_connect(mysql, argv[1], argv[3], argv[4], database, (unsigned)atoi(argv[2]), NULL, 0) == NULL) {
    fprintf(stderr, "replay: cannot connect: %s\n", mysql_error(mysql));
    mysql_close(mysql);
    free(statements);
    free(data);
    return 1;
  }
  long failed = 0;
  for (long i = 0; i < count; ++i) {
    int result = statements[i].kind == 'D' ? mysql_select_db(mysql, database)
                                           : mysql_real_query(mysql, statements[i].text, statements[i].length);
    if (result != 0) {
      ++failed;
      continue;
    }
    MYSQL_RES *rows = mysql_store_result(mysql);
    if (rows != NULL) mysql_free_result(rows);
  }
  mysql_close(mysql);
  double wall = now_seconds() - start;
  fprintf(stderr, "Replayed %ld statements, %ld failed, wall %.3f s\n", count, failed, wall);
  free(statements);
  free(data);
  return 0;
}
