// Any bytes as a compound file.
#include "fuzz/support/compound_exercise.h"
#include "fuzz/support/target.h"

void fuzz::test_one(bytes::View data) {
    fuzz::exercise_image(data);
}
