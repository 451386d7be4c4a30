#pragma once

enum class lock_kind { shared, exclusive };

/// Takes an advisory lock on the directory, which ends with the process and which no child
/// inherits. Where another run holds it this one waits, and says so at level 1. What cannot be
/// locked is used without.
void lock_directory_for_run(const char* path, lock_kind kind);

/// The same, exclusive, for a plain file; anything else is left alone.
void lock_file_for_run(const char* path);
