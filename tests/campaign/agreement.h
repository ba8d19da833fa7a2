#pragma once

#include "routerstate.h"

#include "model/routermodel.h"

#include <QString>

#include <array>

/*!
 * Judges whether the tool and the router hold the same configuration.
 *
 * They must from the end of a whole download, or of a whole upload, on, for as long as nothing was
 * lost between them; each change by the user makes them differ for the moment that its sentence
 * needs. What differs by design is not compared: the mask of a filter and the header of an override
 * that is off, and the names that the user has changed since the last upload.
 *
 * While anything can have been lost, and behind a file whose content no router takes, there is no
 * judgement until the next download or upload.
 */
class Agreement
{
public:
    static constexpr std::size_t nameCount = 24; //!< of the outputs, then of the inputs

    /*! The tool has begun a connection. */
    void connectionBegun();
    /*! The tool has shown the end of a download, \a model being what came. */
    void downloaded(const RouterModel &model, const RouterState &router);
    /*! The tool has put all of \a model into its queue. */
    void uploadQueued(const RouterModel &model, const RouterState &router);
    /*! The tool has left the connection. */
    void connectionEnded() { m_isJudging = false; }
    /*! The user is about to change the model. */
    void edited();
    /*! The tool has read a file, whole or not; \a isGood if all of it is fit for a router. */
    void fileLoaded(bool isGood);

    /*!
     * Looks at both sides. Returns what differs, and has differed for so long without any sentence
     * on its way that it will stay so; empty if all is well.
     */
    QString check(const RouterModel &model, const RouterState &router);

    /*! Whether only a rest of the user can show if the two sides come to agree. */
    bool needsQuiet(const RouterState &router) const;

    /*! What differed when both sides were last compared; empty if nothing did. */
    QString lastDifference() const { return m_difference; }

    /*! How often both sides were found equal. */
    int agreements() const { return m_agreements; }
    /*! How often they were looked at, connected, and nothing could be said. */
    int abstentions() const { return m_abstentions; }
    bool isJudging() const { return m_isJudging; }

    /*! What differs, in words; empty if nothing does. */
    static QString difference(const RouterModel &model, const std::array<QString, nameCount> &names,
                              const tk7sim::RouterConfig &config);

private:
    using Names = std::array<QString, nameCount>; // outputs, then inputs

    void beginJudging(quint64 losses);
    static Names namesOf(const RouterModel &model);
    static bool isPlain(const tk7sim::RouterConfig &config);

    bool m_isDownloading = false;
    bool m_isMixed = false;   // changed by the user in the midst of a download
    bool m_isHostile = false; // the model holds what no router takes
    bool m_isJudging = false;
    Names m_names; // as they were last sent or received
    quint64 m_losses = 0;
    quint64 m_lossesAtQueue = 0;  // when the last upload was put into the queue
    bool m_isUploadMixed = false; // that was in the midst of a download
    int m_downloads = 0;
    int m_uploads = 0;
    qint64 m_differentSince = 0; // microseconds; 0: equal
    qint64 m_lastHeard = 0;      // at the last check
    int m_quietChecks = 0;       // since then without a line of the tool
    QString m_difference;
    int m_agreements = 0;
    int m_abstentions = 0;
};
