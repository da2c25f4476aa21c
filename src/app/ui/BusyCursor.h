#pragma once

// The program's wait cursor as one owner sets it: set(true) shows it once however often it is
// called, set(false) takes that one away, and the destructor takes it away if it still shows.
class BusyCursor final
{
public:
    BusyCursor() = default;
    BusyCursor(const BusyCursor &) = delete;
    BusyCursor &operator=(const BusyCursor &) = delete;
    ~BusyCursor() { set(false); }

    void set(bool busy);
    bool isSet() const { return m_busy; }

private:
    bool m_busy = false;
};
