// The JSON text reader of the clean-up settings: its shapes, its subset and the texts it reads
// differently from a full JSON parser.
#include <gtest/gtest.h>

#include "cleanup/json_text.hpp"

namespace {

JsonDocument Parse(const std::wstring& text) {
    JsonDocument document;
    JsonDocumentParse(text, document);
    return document;
}

JsonObject Object(const std::wstring& text) {
    JsonObject object;
    JsonObjectParse(text, object);
    return object;
}

std::vector<std::wstring> Keys(const JsonObject& object) {
    std::vector<std::wstring> keys;
    for (const JsonValue& value : object.values) keys.push_back(value.key);
    return keys;
}

TEST(JsonText, worked_example_of_two_objects_in_an_array) {
    JsonDocument document = Parse(L"[{\"Color\":\"255 0 0\",\"VarOffset\":0.15},{\"Color\":\"0 255 0\",\"VarOffset\":2}]");
    ASSERT_EQ(document.objects.size(), 2u);
    const JsonObject& first = document.objects[0];
    EXPECT_TRUE(first.name.empty());
    ASSERT_EQ(first.values.size(), 2u);
    EXPECT_EQ(first.values[0].key, L"Color");
    EXPECT_EQ(first.values[0].type, kJsonText);
    EXPECT_EQ(first.values[0].textValue, L"255 0 0");
    EXPECT_EQ(first.values[1].type, kJsonReal);
    EXPECT_DOUBLE_EQ(first.values[1].realValue, 0.15);
    const JsonObject& second = document.objects[1];
    ASSERT_EQ(second.values.size(), 2u);
    EXPECT_EQ(second.values[0].textValue, L"0 255 0");
    EXPECT_EQ(second.values[1].type, kJsonInt);
    EXPECT_EQ(second.values[1].intValue, 2);
}

TEST(JsonText, array_under_a_name_is_shape_two_with_the_document_name) {
    JsonDocument document = Parse(L"{\"Rules\":[{\"Color\":\"1 2 3\",\"VarOffset\":2},{\"VarOffset\":0.5}]}");
    EXPECT_EQ(document.name, L"Rules");
    ASSERT_EQ(document.objects.size(), 2u);
    EXPECT_EQ(document.objects[0].values[0].textValue, L"1 2 3");
    EXPECT_DOUBLE_EQ(document.objects[1].values[0].realValue, 0.5);
}

TEST(JsonText, named_objects_under_a_name_are_shape_three) {
    JsonDocument document = Parse(L"{\"All\":{\"c\":3,\"a\":{\"x\":1},\"b\":{\"y\":2.5}}}");
    EXPECT_EQ(document.name, L"All");
    ASSERT_EQ(document.objects.size(), 2u);
    EXPECT_EQ(document.objects[0].name, L"a");
    EXPECT_EQ(document.objects[0].values[0].intValue, 1);
    EXPECT_EQ(document.objects[1].name, L"b");
    EXPECT_DOUBLE_EQ(document.objects[1].values[0].realValue, 2.5);
}

TEST(JsonText, named_objects_are_shape_one) {
    JsonDocument document = Parse(L"{\"a\":{\"x\":1},\"b\":{\"y\":\"t\"}}");
    ASSERT_EQ(document.objects.size(), 2u);
    EXPECT_EQ(document.objects[0].name, L"a");
    EXPECT_EQ(document.objects[0].values[0].key, L"x");
    EXPECT_EQ(document.objects[1].name, L"b");
    EXPECT_EQ(document.objects[1].values[0].textValue, L"t");
}

TEST(JsonText, empty_text_or_up_to_three_characters_give_an_empty_document) {
    for (const wchar_t* text : {L"", L"[{}", L"{}}"}) EXPECT_TRUE(Parse(text).objects.empty()) << text;
    EXPECT_EQ(Parse(L"[{}]").objects.size(), 1u);
}

TEST(JsonText, single_object_fits_no_shape) {
    EXPECT_TRUE(Parse(L"{\"Color\":\"1 2 3\"}").objects.empty());
}

TEST(JsonText, blank_between_colon_and_value_drops_the_member) {
    int kind = 0;
    EXPECT_EQ(JsonFindMember(L"{\"VarOffset\": 2}", L"VarOffset", kind), L"");
    EXPECT_EQ(kind, kJsonNone);
    EXPECT_EQ(Keys(Object(L"{\"a\":1,\"VarOffset\": 2}")), (std::vector<std::wstring>{L"a"}));
}

TEST(JsonText, blank_after_comma_hides_the_next_key) {
    EXPECT_EQ(Keys(Object(L"{\"a\":1, \"b\":2}")), (std::vector<std::wstring>{L"a"}));
    EXPECT_EQ(JsonTopLevelKeys(L"{\"a\":1, \"b\":2}"), (std::vector<std::wstring>{L"a"}));
}

TEST(JsonText, exponent_reads_as_the_number_before_it) {
    int kind = 0;
    EXPECT_EQ(JsonFindMember(L"{\"a\":1e5}", L"a", kind), L"1");
    EXPECT_EQ(kind, kJsonNumber);
}

TEST(JsonText, number_at_the_end_of_the_text_is_empty_with_its_kind) {
    int kind = 0;
    EXPECT_EQ(JsonFindMember(L"\"a\":1.5", L"a", kind), L"");
    EXPECT_EQ(kind, kJsonPointNumber);
}

TEST(JsonText, true_is_dropped_with_kind_one) {
    int kind = 0;
    EXPECT_EQ(JsonFindMember(L"{\"a\":true}", L"a", kind), L"");
    EXPECT_EQ(kind, kJsonNone);
    EXPECT_TRUE(Object(L"{\"a\":true}").values.empty());
}

TEST(JsonText, find_member_takes_the_first_place_also_inside_a_nested_object) {
    int kind = 0;
    EXPECT_EQ(JsonFindMember(L"{\"in\":{\"k\":1},\"k\":2}", L"k", kind), L"1");
    EXPECT_EQ(JsonGetMember(L"{\"in\":{\"k\":1},\"k\":2}", L"k"), L"2");
}

TEST(JsonText, nested_object_keys_join_the_list_and_read_from_the_first_place) {
    JsonObject object = Object(L"{\"in\":{\"k\":1},\"k\":2}");
    EXPECT_EQ(Keys(object), (std::vector<std::wstring>{L"k", L"k"}));  // "in" is an object, dropped
    EXPECT_EQ(object.values[1].intValue, 1);
}

TEST(JsonText, array_of_integer_and_real_is_a_real_list) {
    JsonObject object = Object(L"{\"a\":[1,2.5]}");
    ASSERT_EQ(object.values.size(), 1u);
    EXPECT_EQ(object.values[0].type, kJsonRealList);
    EXPECT_EQ(object.values[0].realList, (std::vector<double>{1.0, 2.5}));
}

TEST(JsonText, point_right_after_the_bracket_makes_a_real_list) {
    JsonObject object = Object(L"{\"a\":[.5]}");
    EXPECT_EQ(object.values[0].type, kJsonRealList);
    EXPECT_EQ(object.values[0].realList, (std::vector<double>{0.5}));
}

TEST(JsonText, empty_array_is_an_empty_integer_list) {
    JsonObject object = Object(L"{\"a\":[]}");
    ASSERT_EQ(object.values.size(), 1u);
    EXPECT_EQ(object.values[0].type, kJsonIntList);
    EXPECT_TRUE(object.values[0].intList.empty());
}

TEST(JsonText, integer_and_text_lists) {
    JsonObject object = Object(L"{\"i\":[1,-2,30],\"t\":[\"a b\",\"c\"]}");
    ASSERT_EQ(object.values.size(), 2u);
    EXPECT_EQ(object.values[0].type, kJsonIntList);
    EXPECT_EQ(object.values[0].intList, (std::vector<int>{1, -2, 30}));
    EXPECT_EQ(object.values[1].type, kJsonTextList);
    EXPECT_EQ(object.values[1].textList, (std::vector<std::wstring>{L"a b", L"c"}));
}

TEST(JsonText, wrapped_object_takes_its_key_as_name) {
    JsonObject object = Object(L"{\"Rule\":{\"x\":1}}");
    EXPECT_EQ(object.name, L"Rule");
    ASSERT_EQ(object.values.size(), 1u);
    EXPECT_EQ(object.values[0].key, L"x");
}

TEST(JsonText, get_member_of_top_level_values_of_each_kind) {
    std::wstring text = L"{\"n\":-1.5,\"t\":\"x,y\",\"o\":{\"a\":{\"b\":1}},\"l\":[[1],2]}";
    EXPECT_EQ(JsonGetMember(text, L"n"), L"-1.5");
    EXPECT_EQ(JsonGetMember(text, L"t"), L"x,y");
    EXPECT_EQ(JsonGetMember(text, L"o"), L"{\"a\":{\"b\":1}}");
    EXPECT_EQ(JsonGetMember(text, L"l"), L"[[1],2]");
    EXPECT_EQ(JsonGetMember(text, L"a"), L"");
    EXPECT_EQ(JsonGetMember(L"x", L"x"), L"");
    EXPECT_EQ(JsonTopLevelKeys(text), (std::vector<std::wstring>{L"n", L"t", L"o", L"l"}));
}

TEST(JsonText, unclosed_text_object_and_array_are_empty) {
    int kind = 0;
    EXPECT_EQ(JsonFindMember(L"\"a\":\"x", L"a", kind), L"");
    EXPECT_EQ(kind, kJsonQuoted);
    EXPECT_EQ(JsonFindMember(L"\"a\":{\"b\":{}", L"a", kind), L"");
    EXPECT_EQ(kind, kJsonObject);
    EXPECT_EQ(JsonFindMember(L"\"a\":[1,2", L"a", kind), L"");
    EXPECT_EQ(kind, kJsonArray);
}

TEST(JsonText, nested_object_ends_the_object_text_early_in_an_array) {
    JsonDocument document = Parse(L"[{\"a\":1,\"in\":{\"b\":2},\"c\":3}]");
    ASSERT_EQ(document.objects.size(), 1u);
    EXPECT_EQ(Keys(document.objects[0]), (std::vector<std::wstring>{L"a", L"b"}));
}

TEST(JsonText, wrapped_object_with_an_unclosed_name_takes_the_rest_as_name) {
    EXPECT_EQ(Object(L"{\"ab}}").name, L"ab}}");
}

TEST(JsonText, wrapped_object_under_an_empty_key) {
    JsonObject object = Object(L"{\"\":{\"x\":1}}");
    EXPECT_EQ(object.name, L"");
    ASSERT_EQ(object.values.size(), 1u);
    EXPECT_EQ(object.values[0].key, L"x");
}

TEST(JsonText, key_closed_by_the_last_character_is_not_gathered) {
    EXPECT_EQ(Keys(Object(L"{\"in\":{\"z\":1},\"z\"")), (std::vector<std::wstring>{L"z"}));
}

TEST(JsonText, keys_inside_arrays_are_not_gathered) {
    EXPECT_EQ(Keys(Object(L"{\"a\":[{\"k\":1},{\"q\":2}],\"b\":3}")), (std::vector<std::wstring>{L"a", L"b"}));
}

TEST(JsonText, key_characters_between_brackets_are_left_out_of_its_name) {
    // "a[b]c" gathers as "ac", which the member look-up finds at the first key's place.
    EXPECT_EQ(Keys(Object(L"{\"ac\":5,\"a[b]c\":1}")), (std::vector<std::wstring>{L"ac", L"ac"}));
}

TEST(JsonText, parse_clears_the_name_of_a_reused_object) {
    JsonObject object;
    object.name = L"old";
    JsonObjectParse(L"{\"x\":1}", object);
    EXPECT_EQ(object.name, L"");
    JsonObjectParse(L"x", object);
    EXPECT_TRUE(object.values.empty());
}

TEST(JsonText, shape_two_without_an_array_is_empty) {
    EXPECT_TRUE(Parse(L"{\"R\":\"x\",\"y\":[{}]}").objects.empty());
}

TEST(JsonText, parse_clears_the_objects_and_name_of_a_reused_document) {
    JsonDocument document;
    JsonDocumentParse(L"{\"R\":[{\"a\":1}]}", document);
    ASSERT_EQ(document.objects.size(), 1u);
    EXPECT_EQ(document.name, L"R");
    JsonDocumentParse(L"[{}", document);
    EXPECT_TRUE(document.objects.empty());
    EXPECT_EQ(document.name, L"");
}

}  // namespace
