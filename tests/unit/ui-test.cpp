// The host's user interface: data view, draw lists, images, patchers and their views.
#include "ext.h"
#include "jdataview.h"
#include "support/host-test.h"

using namespace maxhost;

namespace {

// A client of a data view: it draws each row's number and writes down what it is told.
struct Client {
    t_jbox box;
    t_object *view;
    t_object *column;
};

t_class *client_class;
std::vector<std::string> told;

t_rowref row_id(long row) { return reinterpret_cast<t_rowref>(row); }
long number_of(t_rowref row) { return static_cast<long>(reinterpret_cast<t_ptr_int>(row)); }

void client_selected(Client *, t_symbol *column, t_rowref row) {
    told.push_back(std::string("selected ") + column->s_name + " " + std::to_string(number_of(row)));
}

void client_paint(Client *, t_object *view, t_symbol *, t_rowref row, int width, int height, int selected) {
    auto *g = reinterpret_cast<t_jgraphics *>(patcherview_get_jgraphics(view));
    t_jrgba color{0, 0, 0, 1};
    jgraphics_set_source_jrgba(g, &color);
    jgraphics_select_font_face(g, "Times", JGRAPHICS_FONT_SLANT_NORMAL, JGRAPHICS_FONT_WEIGHT_NORMAL);
    jgraphics_set_font_size(g, 9);
    jgraphics_move_to(g, 2, 9);
    jgraphics_show_text(g, std::to_string(number_of(row)).c_str());
    if (selected) {
        jgraphics_rectangle(g, 0, 0, width, height);
        jgraphics_fill(g);
    }
}

void client_newpatcherview(Client *x, t_object *view) {
    told.emplace_back("newpatcherview");
    jdataview_patchervis(x->view, view, &x->box.b_ob);
}

void client_freepatcherview(Client *x, t_object *view) {
    told.emplace_back("freepatcherview");
    jdataview_patcherinvis(x->view, view);
}

void *client_new(t_symbol *, long argc, t_atom *argv) {
    auto *x = static_cast<Client *>(object_alloc(client_class));
    jbox_new(&x->box, 0, argc, argv);
    x->view = static_cast<t_object *>(jdataview_new());
    jdataview_setclient(x->view, &x->box.b_ob);
    x->column = jdataview_addcolumn(x->view, gensym("column"), nullptr, 1);
    jcolumn_setcustompaint(x->column, gensym("paintcell"));
    jbox_ready(&x->box);
    return x;
}

void client_free(Client *x) {
    jbox_free(&x->box);
    object_free(x->view);
}

class ViewTest : public HostTest {
  protected:
    void SetUp() override {
        HostTest::SetUp();
        if (!client_class)
            register_client();
        told.clear();
        patcher = new_patcher();
        const OwnedDictionary dictionary = empty_dictionary();
        t_atom rect[4];
        for (t_atom &part : rect)
            atom_setfloat(&part, 100);
        dictionary_appendatoms(dictionary.get(), gensym("patching_rect"), 4, rect);
        client = reinterpret_cast<Client *>(new_box(patcher, gensym("client"), dictionary.get()));
    }
    void TearDown() override {
        free_patcher(patcher);
        HostTest::TearDown();
    }

    static void register_client() {
        client_class =
            class_new("client", (method)client_new, (method)client_free, sizeof(Client), nullptr, A_GIMME, 0);
        client_class->c_flags |= CLASS_FLAG_NEWDICTIONARY;
        jbox_initclass(client_class, JBOX_FONTATTR);
        class_addmethod(client_class, (method)client_selected, "selected", A_CANT, 0);
        class_addmethod(client_class, (method)client_paint, "paintcell", A_CANT, 0);
        class_addmethod(client_class, (method)client_newpatcherview, "newpatcherview", A_CANT, 0);
        class_addmethod(client_class, (method)client_freepatcherview, "freepatcherview", A_CANT, 0);
        class_register(CLASS_BOX, client_class);
    }

    void fill(long count) {
        std::vector<t_rowref> rows;
        for (long row = 1; row <= count; ++row)
            rows.push_back(row_id(row));
        jdataview_clear(client->view);
        jdataview_addrows(client->view, count, rows.data());
    }

    ViewState state() {
        ViewState now{};
        EXPECT_TRUE(data_view_state(box(), now));
        return now;
    }

    t_object *box() { return &client->box.b_ob; }

    t_object *patcher = nullptr;
    Client *client = nullptr;
};

} // namespace

TEST_F(ViewTest, RowsAndSelection) {
    fill(3);
    EXPECT_EQ(state().rows, 3);
    jdataview_selectcell(client->view, gensym("column"), row_id(2));
    EXPECT_EQ(state().selected, 2);
    jdataview_selectcell(client->view, gensym("column"), row_id(0));
    EXPECT_EQ(state().selected, 0) << "0 names no row";
    jdataview_selectcell(client->view, gensym("column"), row_id(4));
    EXPECT_EQ(state().selected, 0);
    EXPECT_TRUE(told.empty()) << "only a person's selection is told";
}

TEST_F(ViewTest, IdsNeedNotBePositions) {
    t_rowref rows[] = {row_id(30), row_id(20), row_id(10)};
    jdataview_addrows(client->view, 3, rows);
    jdataview_selectcell(client->view, gensym("column"), row_id(20));
    EXPECT_EQ(state().selected, 2);
    EXPECT_TRUE(click_row(box(), 3));
    EXPECT_EQ(told, (Lines{"selected column 10"}));
}

TEST_F(ViewTest, ClicksReachTheClient) {
    fill(3);
    EXPECT_TRUE(click_row(box(), 2));
    EXPECT_TRUE(click_row(box(), 2));
    EXPECT_FALSE(click_row(box(), 4));
    EXPECT_FALSE(click_row(box(), 0));
    EXPECT_EQ(told, (Lines{"selected column 2", "selected column 2"}));
}

TEST_F(ViewTest, KeysMoveTheSelection) {
    fill(20);
    jdataview_setheight(client->view, 20); // five rows fit into 100 pixels
    struct {
        Key key;
        long row;
    } const steps[] = {{Key::down, 1},     {Key::down, 2}, {Key::page_down, 7}, {Key::end, 20}, {Key::page_down, 20},
                       {Key::page_up, 15}, {Key::up, 14},  {Key::home, 1},      {Key::up, 1}};
    for (const auto &[key, row] : steps) {
        EXPECT_TRUE(press_key(box(), key));
        EXPECT_EQ(state().selected, row);
    }
    EXPECT_EQ(told.size(), std::size(steps));
    fill(0);
    EXPECT_FALSE(press_key(box(), Key::down));
}

TEST_F(ViewTest, PaintingFillsADrawList) {
    fill(2);
    click_row(box(), 2);
    const DrawList first = painted_row(box(), 1);
    ASSERT_EQ(first.size(), 1u);
    EXPECT_EQ(first[0].kind, DrawRecord::Kind::text);
    EXPECT_EQ(first[0].text, "1");
    EXPECT_STREQ(first[0].font_name->s_name, "Times");
    EXPECT_EQ(first[0].rect.x, 2);
    const DrawList second = painted_row(box(), 2);
    ASSERT_EQ(second.size(), 2u);
    EXPECT_EQ(second[1].kind, DrawRecord::Kind::fill);
    EXPECT_EQ(second[1].rect.width, 50) << "the width that a column begins with";
    EXPECT_TRUE(painted_row(box(), 3).empty());
}

TEST_F(ViewTest, ColumnsAreNoWiderThanTheirMaximum) {
    jcolumn_setwidth(client->column, 104);
    EXPECT_EQ(state().column_width, 100);
    jcolumn_setmaxwidth(client->column, 104);
    EXPECT_EQ(state().column_width, 104);
}

TEST_F(ViewTest, AColumnThatFillsARowIsNoWiderThanItsMaximum) {
    fill(1);
    jdataview_selectcell(client->view, gensym("column"), row_id(1));
    jdataview_setautosizerightcolumn(client->view, 1);
    const auto painted_width = [&](long shown) { return painted_row(box(), 1, nullptr, shown).at(1).rect.width; };
    EXPECT_EQ(painted_width(80), 80);
    EXPECT_EQ(painted_width(300), 100);
    jcolumn_setmaxwidth(client->column, 250);
    EXPECT_EQ(painted_width(300), 250);
}

TEST_F(ViewTest, DrawingOutsideOfPaintingIsRefused) {
    t_object *view = open_patcher_view(patcher);
    EXPECT_EQ(patcherview_get_jgraphics(view), nullptr);
    jgraphics_fill(nullptr);
    EXPECT_EQ(take_lines(), (Lines{"misuse: jgraphics_fill: no drawing context: nothing is being painted"}));
}

TEST_F(ViewTest, BoxesHearOfViews) {
    t_object *view = open_patcher_view(patcher);
    EXPECT_EQ(told, (Lines{"newpatcherview"}));
    close_patcher_view(view);
    EXPECT_EQ(told, (Lines{"newpatcherview", "freepatcherview"}));
    open_patcher_view(patcher); // closed with the patcher
}

using ImageTest = HostTest;

namespace {

// A picture of two by one pixels: red, and a half-transparent blue.
const unsigned char png[] = {0x89, 0x50, 0x4e, 0x47, 0x0d, 0x0a, 0x1a, 0x0a, 0x00, 0x00, 0x00,
                             0x0d, 0x49, 0x48, 0x44, 0x52, 0x00, 0x00, 0x00, 0x02, 0x00, 0x00,
                             0x00, 0x01, 0x08, 0x06, 0x00, 0x00, 0x00, 0xf4, 0x22, 0x7f, 0x8a};

// An encoded picture of that size, made from nothing but the API: there is no other way to a surface than bytes.
std::vector<char> encoded(t_jsurface *surface, long format) {
    void *data = nullptr;
    long size = 0;
    jgraphics_write_image_surface_to_filedata(surface, format, &data, &size);
    std::vector<char> bytes(static_cast<char *>(data), static_cast<char *>(data) + size);
    EXPECT_EQ(sysmem_ptrsize(data), static_cast<t_ptr_size>(size));
    sysmem_freeptr(data);
    return bytes;
}

} // namespace

TEST_F(ImageTest, DamagedBytesAreNoImage) {
    EXPECT_EQ(jgraphics_image_surface_create_from_filedata(png, sizeof png), nullptr) << "cut off after the header";
    EXPECT_EQ(jgraphics_image_surface_create_from_filedata("\xFF\xD8garbage", 9), nullptr);
    EXPECT_EQ(jgraphics_image_surface_create_from_filedata("", 0), nullptr);
    EXPECT_EQ(jgraphics_image_surface_create_from_filedata(nullptr, 5), nullptr);
}

TEST_F(ImageTest, PngAndJpegComeBackFromTheirBytes) {
    const std::string file = read_file(TEST_DATA_DIR "/two-by-one.png");
    t_jsurface *surface = jgraphics_image_surface_create_from_filedata(file.data(), file.size());
    ASSERT_NE(surface, nullptr);
    EXPECT_EQ(jgraphics_image_surface_get_width(surface), 2);
    EXPECT_EQ(jgraphics_image_surface_get_height(surface), 1);
    const std::vector<char> png_bytes = encoded(surface, JGRAPHICS_FILEFORMAT_PNG);
    t_jsurface *again = jgraphics_image_surface_create_from_filedata(png_bytes.data(), png_bytes.size());
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(encoded(again, JGRAPHICS_FILEFORMAT_PNG), png_bytes);
    const std::vector<char> jpeg_bytes = encoded(surface, JGRAPHICS_FILEFORMAT_JPEG);
    t_jsurface *jpeg = jgraphics_image_surface_create_from_filedata(jpeg_bytes.data(), jpeg_bytes.size());
    ASSERT_NE(jpeg, nullptr);
    EXPECT_EQ(jgraphics_image_surface_get_width(jpeg), 2);
    for (t_jsurface *each : {surface, again, jpeg})
        jgraphics_surface_destroy(each);
    jgraphics_surface_destroy(surface);
    EXPECT_EQ(take_lines(), (Lines{"misuse: jgraphics_surface_destroy: not a living image surface"}));
}
