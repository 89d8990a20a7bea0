// The whole program that README.md shows.
#include <README/example.inc>
