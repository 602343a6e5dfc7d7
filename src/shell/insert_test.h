#pragma once

class odbccon;

// The hidden test command: prepares an insert into a trigger test table, shows the statement's error state, inserts 100
// rows one by one, commits, and shows 101 divided by the elapsed seconds.
void run_insert_test(odbccon& connection);
