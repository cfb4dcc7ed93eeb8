// The run: options, configuration, connection, one job, exit code.
#pragma once

// Reads the five connection settings of section "MYSQL", connects and prints
// the outcome. Returns 0 when connected, 1 otherwise.
int ConnectFromConfig();

// The whole program. Returns 1 when the options are invalid or the connection
// fails, else 0 whatever the job reported.
int RunImporter(int argc, const char* const* argv);
