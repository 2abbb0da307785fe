// The baseline of the tool's start: loads the tool's libraries and does nothing.

int main() { return 0; }
