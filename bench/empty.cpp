// What a C++ program costs that does nothing: the measure of a start.
int main() {}
