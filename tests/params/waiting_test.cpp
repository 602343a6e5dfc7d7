// Waiting for parameters, and whatever ends the wait.
#include <QCloseEvent>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QTimer>

#include "params/windows.h"

namespace {

// Two documents in a frame.
class waiting : public prepared_test {
 public:
  ~waiting() override {
    delete frame;
    settle();
    EXPECT_EQ(open_form<fBindParms>(), nullptr);
  }

 protected:
  waiting() { open_frame(); }
  void open_frame() {
    delete frame;
    frame = new QWidget;
    area = new QMdiArea(frame);
    for (QPointer<QWidget>& each : documents) {
      each = new QWidget;
      area->addSubWindow(each)->setAttribute(Qt::WA_DeleteOnClose);
    }
    frame->show();
  }
  // Runs an action once a dialog is open and the wait processes events.
  static void once_open(const std::function<void(fBindParms*)>& action) {
    QTimer::singleShot(0, [action] { action(open_form<fBindParms>()); });
  }
  bool wait(std::size_t document, const std::shared_ptr<odbcstmt>& statement) {
    return wait_for_parameters(documents.at(document), statement, false);
  }

  QPointer<QWidget> frame;
  QMdiArea* area = nullptr;
  std::array<QPointer<QWidget>, 2> documents;
};

TEST_F(waiting, ends_with_what_the_dialog_says) {
  const struct {
    const char* name;
    std::function<void(fBindParms*)> end;
    bool bound;
  } cases[] = {{"bind", [](fBindParms* form) { press(form, "Command1"); }, true},
               {"enter", [](fBindParms* form) { QTest::keyClick(form, Qt::Key_Return); }, true},
               {"cancel", [](fBindParms* form) { press(form, "Command2"); }, false},
               {"escape", [](fBindParms* form) { QTest::keyClick(form, Qt::Key_Escape); }, false},
               {"close box", [](fBindParms* form) { form->close(); }, false},
               {"deleted", [](fBindParms* form) { form->deleteLater(); }, false}};
  for (const auto& each : cases) {
    SCOPED_TRACE(each.name);
    const auto statement = prepared(integers(2));
    once_open(each.end);
    EXPECT_EQ(wait(0, statement), each.bound);
    EXPECT_EQ(statement->Execute(), each.bound) << "bound or not is what the driver sees too";
    EXPECT_EQ(open_form<fBindParms>(), nullptr);
  }
  EXPECT_EQ(ui.take_texts(), texts{});
}

TEST_F(waiting, does_not_begin_with_an_unhandled_type) {
  EXPECT_FALSE(wait(0, prepared({{SQL_LONGVARCHAR, 10}})));
  EXPECT_EQ(ui.take_texts(), texts{"Unhandeled Type Encountered!"});
  ui.while_open = [&](const message&) { delete documents[0]->parentWidget(); };
  EXPECT_FALSE(wait(0, prepared({{SQL_LONGVARCHAR, 10}})));
}

TEST_F(waiting, ends_when_the_document_or_the_frame_goes) {
  const std::function<void()> endings[] = {
      [&] { documents[0]->parentWidget()->close(); },
      [&] { delete documents[0]->parentWidget(); },
      [&] { area->closeAllSubWindows(); },
      [&] { delete frame; },
  };
  for (const auto& each : endings) {
    open_frame();
    once_open([&](fBindParms*) { each(); });
    EXPECT_FALSE(wait(0, prepared(integers(2))));
  }
  open_frame();
  once_open([&](fBindParms*) {
    once_open([&](fBindParms*) { area->closeAllSubWindows(); });
    EXPECT_FALSE(wait(1, prepared(integers(2))));
  });
  EXPECT_FALSE(wait(0, prepared(integers(1))));
}

TEST_F(waiting, ends_when_the_document_goes_under_the_dialogs_own_message) {
  once_open([](fBindParms* form) {
    value_of_line(form, 0)->setText("x");
    press(form, "Command1");
  });
  ui.while_open = [&](const message&) { delete documents[0]->parentWidget(); };
  EXPECT_FALSE(wait(0, prepared(integers(1))));
  EXPECT_EQ(ui.take_texts(), texts{"Bind data # 1 is not numeric!"});
}

TEST_F(waiting, a_document_that_hides_instead_of_going_ends_it_and_one_that_refuses_to_close_does_not) {
  QWidget plain;
  plain.show();
  once_open([&](fBindParms*) { plain.close(); });
  EXPECT_FALSE(wait_for_parameters(&plain, prepared(integers(1)), false));

  struct stubborn : QWidget {
    void closeEvent(QCloseEvent* event) override { event->ignore(); }
  } document;
  document.show();
  once_open([&](fBindParms* form) {
    document.close();
    QTimer::singleShot(0, form, [form] { press(form, "Command1"); });
  });
  EXPECT_TRUE(wait_for_parameters(&document, prepared(integers(1)), false));
}

TEST_F(waiting, a_statement_prepared_anew_is_not_bound) {
  const auto statement = prepared(integers(2));
  once_open([&](fBindParms* form) {
    ASSERT_TRUE(statement->Prep("scripted"));
    press(form, "Command1");
  });
  EXPECT_FALSE(wait(0, statement));
  EXPECT_EQ(ui.take_texts().size(), 1U);
  once_open([&](fBindParms* form) {
    press(form, "Command1");
    statement->Kill();
  });
  EXPECT_FALSE(wait(0, statement)) << "freed after it was bound, before the wait returned";
}

// The outer dialog is done first; its wait returns when the inner one has.
TEST_F(waiting, two_documents_wait_at_once_and_end_in_any_order) {
  for (const bool outer_bound : {false, true}) {
    once_open([&](fBindParms* outer) {
      once_open([&, outer](fBindParms*) {
        press(outer, outer_bound ? "Command1" : "Command2");
        EXPECT_FALSE(outer->isVisible());
        press(open_form<fBindParms>(), outer_bound ? "Command2" : "Command1");
      });
      EXPECT_EQ(wait(1, prepared(integers(2))), !outer_bound);
    });
    EXPECT_EQ(wait(0, prepared(integers(1))), outer_bound);
  }
}

TEST_F(waiting, a_bound_document_that_closes_before_the_inner_wait_returns_is_given_up) {
  once_open([&](fBindParms* outer) {
    once_open([&, outer](fBindParms*) {
      press(outer, "Command1");
      documents[0]->parentWidget()->close();
      QTimer::singleShot(0, [] { press(open_form<fBindParms>(), "Command1"); });
    });
    EXPECT_TRUE(wait(1, prepared(integers(2))));
  });
  EXPECT_FALSE(wait(0, prepared(integers(1))));
}

}  // namespace
