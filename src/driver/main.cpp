#include "driver/importer.h"

int main(int argc, char** argv) { return RunImporter(argc, argv); }
