#include "words/words.h"

#include <gtest/gtest.h>

#include <QApplication>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    words::face_is(words::Face::window);
    return RUN_ALL_TESTS();
}
