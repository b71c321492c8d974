// Echoes what it is sent, as an application of the main loop: one end of a pair
// of sockets is served by an Echo; at the other a Client asks whenever a timer
// ticks, and ends the application when it has heard enough.
#include <sys/socket.h>
#include <unistd.h>

#include <iostream>

#include "event/Application.h"
#include "event/DataTypes.h"
#include "event/Exec.h"
#include "event/GlobalOrder.h"
#include "event/SelectHandler.h"
#include "event/Timer.h"

class Echo : public qzSelectHandler {
  public:
    explicit Echo(int socket) {
        descriptor = socket;
        qz_theExecutive->addSelectHandler(this);
    }
    ~Echo() override { qz_theExecutive->removeSelectHandler(this); }
    const char* className() const override { return "Echo"; }

    void handleRead() override {
        if (read(descriptor, &letter, 1) == 1) waitTo(false, true);
    }
    void handleWrite() override {
        if (write(descriptor, &letter, 1) == 1) waitTo(true, false);
    }

  private:
    // The executive looks at the flags when the handler is added.
    void waitTo(bool read, bool write) {
        qz_theExecutive->removeSelectHandler(this);
        reading = read;
        writing = write;
        qz_theExecutive->addSelectHandler(this);
    }

    char letter = 0;
};

class Client : public qzSelectHandler {
  public:
    Client(int socket, qzApplication& application) : application(application), clock(1) {
        descriptor = socket;
        qz_theExecutive->addSelectHandler(this);
        addInput("ask", qzDT_void, this, reinterpret_cast<void (*)()>(ask), 0);
        clock.connect("tick", this, "ask");
        clock.startTimer(0.01f);
    }
    ~Client() override { qz_theExecutive->removeSelectHandler(this); }
    const char* className() const override { return "Client"; }

    void handleRead() override {
        char letter;
        if (read(descriptor, &letter, 1) != 1) return;
        std::cout << "heard " << letter << std::endl;
        if (letter == 'c') application.close();
    }

  private:
    static void ask(Client* client) {
        if (write(client->descriptor, &client->next, 1) == 1) ++client->next;
    }

    qzApplication& application;
    qzTimer clock;
    char next = 'a';
};

class Program : public qzApplication {
  public:
    const char* className() const override { return "Program"; }

    void initialize(int, char**) override {
        int ends[2];
        if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0) return close();
        echo = new Echo(ends[0]);
        client = new Client(ends[1], *this);
    }
    void close() override {
        qzApplication::close(); // the loop ends with this pass
        std::cout << "closing" << std::endl;
    }
    ~Program() override {
        delete client;
        delete echo;
    }

  private:
    Echo* echo = nullptr;
    Client* client = nullptr;
};

int main(int argc, char** argv) {
    qzInitializeToolkit();
    Program program;
    qz_theExecutive->initialize(argc, argv);
    qz_theExecutive->open();
    qz_theExecutive->loop();
    qzCleanupGlobalOrderings();
}
