// A C++ program that does nothing: the reference for the time of a start.
int main() {}
