// List models for the benchmarks.
#pragma once

#include "vrk.jlist.h"

// A list with a view, without a box: its view has no client.
class BareList {
  public:
    explicit BareList(const char *column = "vrk.tessaroll");
    ~BareList() { jlist_free(list_); }
    BareList(const BareList &) = delete;
    BareList &operator=(const BareList &) = delete;

    t_jlist *get() { return list_; }
    void append();
    void append(long rows);
    void remove_last();

  private:
    t_jlist *list_;
};

// A document holder for resources of a type.
class Holder {
  public:
    explicit Holder(const char *type);
    ~Holder() { jxmlfile_free(holder_); }
    Holder(const Holder &) = delete;
    Holder &operator=(const Holder &) = delete;

    t_jxmlfile *get() { return holder_; }

  private:
    t_jxmlfile *holder_;
};
