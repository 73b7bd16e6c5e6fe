/* A library with one export, for loading and looking up. */
int probe_Answer(void) { return 42; }
