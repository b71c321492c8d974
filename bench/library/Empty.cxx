// A program that does nothing, for bench/library.py to start.
int main() { return 0; }
