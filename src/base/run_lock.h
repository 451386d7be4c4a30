#pragma once

enum class lock_kind { shared, exclusive };

/// Takes an advisory lock on the directory, which ends with the process and which no child
/// inherits. If another run holds it, this one waits, and says so at level 1; if another directory
/// stands in its place then, that one is locked. What is there but cannot be locked is used
/// without, and that is said at level 2.
void lock_directory_for_run(const char* path, lock_kind kind);

/// Gives the lock on the directory back before the end of the process.
void release_directory_lock();

/// The same as for a directory, exclusive, for a plain file; anything else cannot be locked. Only a
/// child that calls hand_on_file_lock inherits it.
void lock_file_for_run(const char* path);

/// For a child that is about to become another program: that program holds the lock on the file
/// until it ends.
void hand_on_file_lock();

/// Ends the lock on the file, also if the programs that held it have left others running.
void release_file_lock();
