/* A library function, archived into scale.a and linked into hello. */
int scale(int x) { return 6 * x; }
