#pragma once
// The program's start: shows the login and, on a good login, the hub. It owns both for as
// long as the program runs; the hub is made at the first good login and shows each later
// one.

#include <QObject>
#include <memory>

namespace rtx::ui {

class LOGIN;
class inicio;

class Start : public QObject {
    Q_OBJECT
public:
    explicit Start(QObject* parent = nullptr);
    ~Start() override; // the hub and the login go, and the session ends

    // Shows the login, made anew (it reads site.txt and the users again).
    LOGIN* showLogin();
    LOGIN* login() const { return login_.get(); }
    // The hub; none before the first good login.
    inicio* hub() const { return hub_.get(); }
    // Deletes the hub and ends the session.
    void closeHub();

private:
    std::unique_ptr<inicio> hub_;
    std::unique_ptr<LOGIN> login_;

    void onLoggedIn();
};

} // namespace rtx::ui
